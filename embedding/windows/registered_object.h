#pragma once

#include <filesystem>
#include <string_view>

#include "automation/object.h"

// Objects of a component that is a DLL on this Windows machine, called by name as a late-bound program does, with typed
// references to its variables; embedding::Till accepts such a facade. Their members raise AutomationError. Use them on
// the thread that creates the first one.
namespace mirvane::embedding {

/// Creates an object of the class registered under this name, such as u"VarlenFiscalQ7734.fiscalTrevikModule". Raises
/// runtime_error with the reason if that fails.
ObjectPtr createRegistered(TextView programmaticId);
/// The same, but returns null if that fails.
ObjectPtr findRegistered(TextView programmaticId);
/// Creates an object of the class "{D7...}" from this DLL, registered or not. Raises runtime_error with the reason if
/// that fails.
ObjectPtr createFrom(const std::filesystem::path& library, std::string_view classId);

}  // namespace mirvane::embedding
