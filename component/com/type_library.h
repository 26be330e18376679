#pragma once

#include "com/com.h"

namespace mirvane::com {

/// The type library in the DLL itself; what the registry says of it does not matter.
HRESULT loadTypeLibrary(ComPtr<ITypeLib>& library);

/// The description of a class or interface in the type library.
HRESULT findTypeInfo(const GUID& id, ITypeInfo** info);

}  // namespace mirvane::com
