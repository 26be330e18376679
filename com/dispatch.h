#pragma once

#include "automation/object.h"
#include "com/com.h"

namespace mirvane::com {

/// The object as an automation client holds it. The same object has the same identity as long as anyone holds it.
/// Not for null.
ComPtr<IDispatch> wrap(const ObjectPtr& object);

/// The object behind a COM object of this component; null when `pointer` is null or someone else's.
ObjectPtr unwrap(IUnknown* pointer);

}  // namespace mirvane::com
