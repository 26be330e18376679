#include "com/type_library.h"

namespace mirvane::com {

HRESULT loadTypeLibrary(ComPtr<ITypeLib>& library) {
  ITypeLib* loaded = nullptr;
  const HRESULT outcome = LoadTypeLibEx(platform::ownPath().c_str(), REGKIND_NONE, &loaded);
  if (SUCCEEDED(outcome)) library.reset(loaded);
  return outcome;
}

HRESULT findTypeInfo(const GUID& id, ITypeInfo** info) {
  ComPtr<ITypeLib> library;
  const HRESULT outcome = loadTypeLibrary(library);
  return FAILED(outcome) ? outcome : library->GetTypeInfoOfGuid(id, info);
}

}  // namespace mirvane::com
