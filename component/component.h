#pragma once

#include <span>
#include <string_view>

#include "automation/object.h"

namespace mirvane {

/// A class that programs can create by its programmatic identifier, kTypeLibraryName + "." + its name.
struct PublicClass {
  const ClassInfo& (*describe)();
  ObjectPtr (*create)();
  std::string_view classId;
  std::string_view interfaceId;
};

/// The public classes in the order of the type library.
std::span<const PublicClass> publicClasses();

/// A new object of the public class of that name. Raises logic_error when there is none.
ObjectPtr createObject(std::string_view className);

inline constexpr std::string_view kTypeLibraryName = "VarlenFiscalQ7734";
inline constexpr std::string_view kTypeLibraryId = "{1C04D316-0AAD-48FC-99CB-B11028EE0A57}";
inline constexpr std::string_view kFiscalTypesId = "{3EB0F3A4-E7B6-4F30-A52E-7B517E4BA7B8}";
inline constexpr int kTypeLibraryMajor = 1;
inline constexpr int kTypeLibraryMinor = 0;

/// Puts the component together: gives the module state its driver classes in probe order. To be called once before the
/// first public object is made.
void startComponent();

}  // namespace mirvane
