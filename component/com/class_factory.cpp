#include "com/class_factory.h"

#include "com/foreign_object.h"
#include "com/objects.h"
#include "state/module_state.h"

namespace mirvane::com {
namespace {

// At the end of the process the record's own thread is already gone.
struct RecordEnd {
  RecordEnd() = default;
  RecordEnd(const RecordEnd&) = delete;
  RecordEnd& operator=(const RecordEnd&) = delete;
  ~RecordEnd() {
    if (moduleState().recorder != nullptr) moduleState().recorder->finish();
  }
};

bool startOnce() {
  static const RecordEnd kRecordEnd;
  // Pinned for ever. Unloading with an apartment would lose the state of an open port and leave the port blocked, and
  // each unloading costs the process one of about a thousand thread-local slots.
  HMODULE pinned = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                     reinterpret_cast<LPCWSTR>(&startOnce), &pinned);
  startComponent();
  moduleState().createObject = &createForeignObject;
  moduleState().recordFolder = moduleState().platform->files.componentFolder() + u"\\records";
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
  return guardedInside([&] {
    static const bool kStarted = startOnce();
    static_cast<void>(kStarted);
    return wrap(class_.create())->QueryInterface(iid, object);
  });
}

// The DLL stays loaded anyway.
HRESULT ClassFactory::LockServer(BOOL /*lock*/) { return S_OK; }

}  // namespace mirvane::com
