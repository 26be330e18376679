// A journal box for the tests: another component's object, as the journal meets it on a till that has one.

#include <ole2.h>
#include <olectl.h>

#include <cwchar>
#include <iterator>
#include <string>

namespace {

constexpr CLSID kClass = {0x8A0E6C1F, 0x5B1D, 0x4E0C, {0x9C, 0x51, 0x20, 0xD5, 0x64, 0x7B, 0x1E, 0x93}};
constexpr const wchar_t* kClassText = L"{8A0E6C1F-5B1D-4E0C-9C51-20D5647B1E93}";
constexpr const wchar_t* kProgrammaticId = L"quorndll_webupdate.box";
constexpr DISPID kGetDllPath = 7;
long liveCount = 0;

template <class Interface>
class Counted : public Interface {
 public:
  Counted() { ++liveCount; }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == IID_IUnknown || iid == __uuidof(Interface);
    *object = known ? this : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }

 protected:
  virtual ~Counted() { --liveCount; }

 private:
  ULONG references_ = 1;
};

/// Its default member, assigned to, remembers the type's number and, read, tells it.
class Box final : public Counted<IDispatch> {
 public:
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return DISP_E_BADINDEX; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
    const bool known = _wcsicmp(names[0], L"GetDllPath") == 0;
    ids[0] = known ? kGetDllPath : DISPID_UNKNOWN;
    return known ? S_OK : DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* given, VARIANT* result, EXCEPINFO*,
                                   UINT*) override {
    if (id == kGetDllPath && (flags & DISPATCH_METHOD) != 0) return getDllPath(*given);
    if (id == DISPID_VALUE && (flags & DISPATCH_PROPERTYGET) != 0) {
      result->vt = VT_I2;
      result->iVal = static_cast<SHORT>(assigned_);
      return S_OK;
    }
    // Set, not assigned, where it is an object: what many components insist on.
    const WORD wanted =
        given->cArgs == 1 && given->rgvarg[0].vt == VT_DISPATCH ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT;
    if (id != DISPID_VALUE || (flags & wanted) == 0 || given->cArgs != 1) return DISP_E_MEMBERNOTFOUND;
    assigned_ = given->rgvarg[0].vt;
    return S_OK;
  }

 private:
  static HRESULT getDllPath(const DISPPARAMS& given) {
    if (given.cArgs != 2) return DISP_E_BADPARAMCOUNT;
    for (UINT i = 0; i < 2; ++i) {
      if (given.rgvarg[i].vt != (VT_BYREF | VT_BSTR)) return DISP_E_TYPEMISMATCH;
    }
    // The last argument comes first.
    SysReAllocString(given.rgvarg[0].pbstrVal, L"c:\\journal\\$\\;c:\\copies\\$\\");
    return S_OK;
  }

  VARTYPE assigned_ = VT_EMPTY;
};

class Factory final : public Counted<IClassFactory> {
 public:
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
    auto* box = new Box;
    const HRESULT outcome = box->QueryInterface(iid, object);
    box->Release();
    return outcome;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    liveCount += lock != FALSE ? 1 : -1;
    return S_OK;
  }
};

HRESULT set(const std::wstring& key, const wchar_t* name, const wchar_t* value) {
  const std::size_t size = (std::wcslen(value) + 1) * sizeof(wchar_t);
  return HRESULT_FROM_WIN32(
      RegSetKeyValueW(HKEY_CLASSES_ROOT, key.c_str(), name, REG_SZ, value, static_cast<DWORD>(size)));
}

const std::wstring kClassKey = std::wstring(L"CLSID\\") + kClassText;
const std::wstring kServerKey = kClassKey + L"\\InprocServer32";
const std::wstring kIdKey = std::wstring(kProgrammaticId) + L"\\CLSID";

}  // namespace

STDAPI DllGetClassObject(REFCLSID id, REFIID iid, void** object) {
  if (id != kClass) return CLASS_E_CLASSNOTAVAILABLE;
  auto* factory = new Factory;
  const HRESULT outcome = factory->QueryInterface(iid, object);
  factory->Release();
  return outcome;
}

STDAPI DllCanUnloadNow() { return liveCount == 0 ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() {
  HMODULE module = nullptr;
  wchar_t path[MAX_PATH];
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCWSTR>(&liveCount), &module);
  GetModuleFileNameW(module, path, static_cast<DWORD>(std::size(path)));
  for (const HRESULT outcome : {set(kServerKey, nullptr, path), set(kServerKey, L"ThreadingModel", L"Apartment"),
                                set(kIdKey, nullptr, kClassText)}) {
    if (FAILED(outcome)) return outcome;
  }
  return S_OK;
}

STDAPI DllUnregisterServer() {
  RegDeleteTreeW(HKEY_CLASSES_ROOT, kClassKey.c_str());
  RegDeleteTreeW(HKEY_CLASSES_ROOT, kProgrammaticId);
  return S_OK;
}
