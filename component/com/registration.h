#pragma once

#include "com/com.h"

namespace mirvane::com {

/// Scope of a registration: all users of the machine (needs administrator rights), or the current user.
enum class Scope { machine, user };

/// Writes the classes, their programmatic identifiers and the type library to the registry, with the present path of
/// this DLL. If it fails, nothing remains.
HRESULT registerComponent(Scope scope);

/// Removes the registration. The registration of the other bitness stays.
HRESULT unregisterComponent(Scope scope);

}  // namespace mirvane::com
