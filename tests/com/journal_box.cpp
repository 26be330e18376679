// A journal box for the tests: another component's object, as the journal meets it on a till that has one.

#include <ole2.h>

#include <cwchar>

namespace {

constexpr CLSID kClass = {0x8A0E6C1F, 0x5B1D, 0x4E0C, {0x9C, 0x51, 0x20, 0xD5, 0x64, 0x7B, 0x1E, 0x93}};
constexpr DISPID kGetDllPath = 7;

template <class Interface>
class Counted : public Interface {
 public:
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
  virtual ~Counted() = default;

 private:
  ULONG references_ = 1;
};

template <class Class>
HRESULT create(REFIID iid, void** object) {
  auto* fresh = new Class;
  const HRESULT outcome = fresh->QueryInterface(iid, object);
  fresh->Release();
  return outcome;
}

/// Its default member, assigned to, remembers the type's number and, read, tells it.
class Box final : public Counted<IDispatch> {
 public:
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
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
    // The last argument comes first. The second folder is named in letters that no Greek code page has.
    SysReAllocString(given.rgvarg[0].pbstrVal, L"c:\\journal\\$\\;c:\\\u043A\u043E\u043F\u0438\u0438\\$\\");
    return S_OK;
  }

  VARTYPE assigned_ = VT_EMPTY;
};

class Factory final : public Counted<IClassFactory> {
 public:
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
    return create<Box>(iid, object);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

}  // namespace

STDAPI DllGetClassObject(REFCLSID id, REFIID iid, void** object) {
  return id == kClass ? create<Factory>(iid, object) : CLASS_E_CLASSNOTAVAILABLE;
}
