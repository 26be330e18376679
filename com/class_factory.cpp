#include "com/class_factory.h"

#include "com/dispatch.h"
#include "com/foreign_object.h"
#include "interface/module_state.h"

namespace mirvane::com {
namespace {

bool startOnce() {
  startComponent();
  moduleState().createObject = &createForeignObject;
  return true;
}

}  // namespace

HRESULT ClassFactory::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  const bool known = iid == IID_IUnknown || iid == IID_IClassFactory;
  *object = known ? static_cast<IClassFactory*>(this) : nullptr;
  if (!known) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

HRESULT ClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (outer != nullptr) return CLASS_E_NOAGGREGATION;
  return guarded([&] {
    static const bool kStarted = startOnce();
    static_cast<void>(kStarted);
    return wrap(class_.create())->QueryInterface(iid, object);
  });
}

HRESULT ClassFactory::LockServer(BOOL lock) {
  liveCount += lock != FALSE ? 1 : -1;
  return S_OK;
}

}  // namespace mirvane::com
