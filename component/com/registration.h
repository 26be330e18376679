#pragma once

#include "com/com.h"

namespace mirvane::com {

/// For whom the component is registered: for all users of the machine, which takes an administrator, or for the
/// current user.
enum class Scope { machine, user };

/// Writes the classes, their programmatic identifiers and the type library to the registry, all naming this DLL where
/// it lies now. On a failure nothing of it stays.
HRESULT registerComponent(Scope scope);

/// Takes everything back. What another build of the component for 32 or 64 bits registered stays.
HRESULT unregisterComponent(Scope scope);

}  // namespace mirvane::com
