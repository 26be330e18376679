#pragma once

#include <filesystem>
#include <string_view>

#include "automation/object.h"

// Objects of a component that is a DLL of this Windows machine, called by name as a program calls them that was
// compiled against nothing, with typed references to its variables; embedding::Till takes such a facade. Their members
// raise AutomationError. The thread that makes the first object is the one that uses them.
namespace mirvane::embedding {

/// A new object of the class that is registered under this name, such as u"VarlenFiscalQ7734.fiscalTrevikModule".
/// Raises runtime_error with the reason where it cannot be had.
ObjectPtr createRegistered(TextView programmaticId);
/// The same, and null where it cannot be had.
ObjectPtr findRegistered(TextView programmaticId);
/// A new object out of this DLL, registered or not, of the class "{D7...}". Raises runtime_error with the reason.
ObjectPtr createFrom(const std::filesystem::path& library, std::string_view classId);

}  // namespace mirvane::embedding
