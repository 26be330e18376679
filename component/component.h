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

/// The public classes, in type-library order.
std::span<const PublicClass> publicClasses();

/// Creates an object of the named public class. Raises logic_error if there is no such class.
ObjectPtr createObject(std::string_view className);

inline constexpr std::string_view kTypeLibraryName = "VarlenFiscalQ7734";
inline constexpr std::string_view kTypeLibraryId = "{1C04D316-0AAD-48FC-99CB-B11028EE0A57}";
inline constexpr std::string_view kFiscalTypesId = "{3EB0F3A4-E7B6-4F30-A52E-7B517E4BA7B8}";
inline constexpr int kTypeLibraryMajor = 1;
inline constexpr int kTypeLibraryMinor = 0;

/// Assembles the component: gives the module state its driver classes in probe order. Call it once before the first
/// public object is created.
void startComponent();

}  // namespace mirvane
