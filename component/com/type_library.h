#pragma once

#include "com/com.h"

namespace mirvane::com {

/// Loads the type library from the DLL's own resource, whatever the registry says.
HRESULT loadTypeLibrary(ComPtr<ITypeLib>& library);

/// The description of a class or interface in the type library.
HRESULT findTypeInfo(const GUID& id, ITypeInfo** info);

}  // namespace mirvane::com
