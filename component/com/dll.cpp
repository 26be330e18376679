#include <algorithm>

#include "com/class_factory.h"
#include "com/registration.h"

// The functions that the system calls in the DLL. There is no DllMain, because nothing needs to be done under the
// loader lock.

using namespace mirvane;
using namespace mirvane::com;

STDAPI DllGetClassObject(REFCLSID id, REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  return guarded([&]() -> HRESULT {
    const auto all = publicClasses();
    const auto found = std::find_if(all.begin(), all.end(), [&](const auto& c) { return guidFrom(c.classId) == id; });
    if (found == all.end()) return CLASS_E_CLASSNOTAVAILABLE;
    return ComPtr<ClassFactory>(new ClassFactory(*found))->QueryInterface(iid, object);
  });
}

// Once it has created an object it stays loaded, and this is cheaper than loading it again.
STDAPI DllCanUnloadNow() { return S_FALSE; }

STDAPI DllRegisterServer() {
  return guarded([] { return registerComponent(Scope::machine); });
}

STDAPI DllUnregisterServer() {
  return guarded([] { return unregisterComponent(Scope::machine); });
}

// "user", as in regsvr32 /n /i:user, means the current user only and needs no administrator rights.
STDAPI DllInstall(BOOL install, LPCWSTR commandLine) {
  const bool user = commandLine != nullptr && _wcsicmp(commandLine, L"user") == 0;
  const Scope scope = user ? Scope::user : Scope::machine;
  return guarded([&] { return install != FALSE ? registerComponent(scope) : unregisterComponent(scope); });
}
