#pragma once

#include "automation/object.h"
#include "com/com.h"

// Declared apart from dispatch.cpp, where they are: a value may hold an object, and an object is called with values.
namespace mirvane::com {

/// The object as an automation client holds it. The same object has the same identity as long as anyone holds it; a
/// foreign object keeps its own. Not for null.
ComPtr<IDispatch> wrap(const ObjectPtr& object);

/// The object behind a COM object of this component, or a ForeignObject for someone else's; null when `pointer` is null
/// or cannot be called by name.
ObjectPtr unwrap(IUnknown* pointer);

}  // namespace mirvane::com
