#pragma once

#include <ole2.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

// What the compiled programs share that call the component. They print FAIL lines and, at the end, "ok".

inline void expect(const std::string& what, bool holds) {
  if (!holds) std::printf("FAIL %s\n", what.c_str());
}

inline void* create(const wchar_t* name, REFIID iid = IID_IDispatch) {
  CLSID id{};
  void* object = nullptr;
  CLSIDFromProgID((std::wstring(L"VarlenFiscalQ7734.") + name).c_str(), &id);
  const HRESULT outcome = iid == IID_IClassFactory ? CoGetClassObject(id, CLSCTX_INPROC_SERVER, nullptr, iid, &object)
                                                   : CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, iid, &object);
  if (FAILED(outcome)) {
    std::printf("FAIL creating %ls: %08lX\n", name, outcome);
    std::fflush(stdout);
    ExitProcess(1);
  }
  return object;
}

inline IDispatch* createObject(const wchar_t* name) { return static_cast<IDispatch*>(create(name)); }

template <class T>
VARIANT reference(VARTYPE type, T& variable) {
  VARIANT value{};
  value.vt = static_cast<VARTYPE>(VT_BYREF | type);
  value.byref = &variable;
  return value;
}

inline VARIANT number(double value) {
  VARIANT variant{};
  variant.vt = VT_R8;
  variant.dblVal = value;
  return variant;
}

/// Not freed: the programs are short.
inline VARIANT text(const wchar_t* value) {
  VARIANT variant{};
  variant.vt = VT_BSTR;
  variant.bstrVal = SysAllocString(value);
  return variant;
}

inline VARIANT flag(bool value) {
  VARIANT variant{};
  variant.vt = VT_BOOL;
  variant.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  return variant;
}

inline DISPID idOf(IDispatch* object, const wchar_t* member) {
  auto* name = const_cast<wchar_t*>(member);
  DISPID id = DISPID_UNKNOWN;
  object->GetIDsOfNames(IID_NULL, &name, 1, 0, &id);
  return id;
}

/// `arguments` from the first to the last.
inline HRESULT call(IDispatch* object, const wchar_t* member, std::vector<VARIANT> arguments,
                    WORD flags = DISPATCH_METHOD, VARIANT* result = nullptr, REFIID iid = IID_NULL) {
  std::reverse(arguments.begin(), arguments.end());
  DISPID value = DISPID_PROPERTYPUT;
  const bool put = (flags & DISPATCH_PROPERTYPUT) != 0;
  DISPPARAMS given{arguments.data(), put ? &value : nullptr, static_cast<UINT>(arguments.size()), put ? 1U : 0U};
  return object->Invoke(idOf(object, member), iid, 0, flags, &given, result, nullptr, nullptr);
}

/// What an operation reports through.
struct Outcome {
  short result = 7;
  BSTR text = nullptr;

  std::vector<VARIANT> with(std::vector<VARIANT> arguments, bool suppress = true) {
    for (const VARIANT& last : {reference(VT_I2, result), reference(VT_BSTR, text), flag(suppress)}) {
      arguments.push_back(last);
    }
    return arguments;
  }
};

inline std::vector<VARIANT> itemSale(VARIANT quantity, VARIANT department, Outcome& outcome, bool suppress = true,
                                     const wchar_t* name = L"item") {
  return outcome.with({text(name), quantity, number(1), number(24), department}, suppress);
}

/// How a thread computes.
struct Environment {
  unsigned short x87 = 0;
  unsigned sse = 0;

  static Environment now() {
    Environment environment;
    asm volatile("fnstcw %0\n\tstmxcsr %1" : "=m"(environment.x87), "=m"(environment.sse));
    return environment;
  }
  void set() const { asm volatile("fnclex\n\tfldcw %0\n\tldmxcsr %1" : : "m"(x87), "m"(sse)); }
  bool operator==(const Environment&) const = default;
  Environment settings() const { return {x87, sse & ~0x3FU}; }  // without what happened so far
};

constexpr Environment kDelphi = {0x1372, 0x1900};

/// An object of the program's, whose default member runs `read`.
class HostObject final : public IDispatch {
 public:
  explicit HostObject(std::function<HRESULT(VARIANT&)> read) : read_(std::move(read)) {}

  VARIANT argument() {
    VARIANT variant{};
    variant.vt = VT_DISPATCH;
    variant.pdispVal = this;
    return variant;
  }

  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    *object = iid == IID_IUnknown || iid == IID_IDispatch ? this : nullptr;
    return *object != nullptr ? S_OK : E_NOINTERFACE;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                                   UINT*) override {
    return id == DISPID_VALUE && (flags & DISPATCH_PROPERTYGET) != 0 ? read_(*result) : DISP_E_MEMBERNOTFOUND;
  }

 private:
  std::function<HRESULT(VARIANT&)> read_;
};
