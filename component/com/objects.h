#pragma once

#include "automation/object.h"
#include "com/com.h"

// Separate from dispatch.cpp, which implements them, because values may hold objects and objects are called with
// values.
namespace mirvane::com {

/// The object as an automation client holds it. An object keeps the same identity as long as anybody holds it; a
/// foreign object keeps its own. `object` must not be null.
ComPtr<IDispatch> wrap(const ObjectPtr& object);

/// The object behind a COM object of this component, or a ForeignObject for any other; null if `pointer` is null or
/// cannot be called by name.
ObjectPtr unwrap(IUnknown* pointer);

}  // namespace mirvane::com
