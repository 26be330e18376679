#pragma once

#include <ole2.h>

#include <algorithm>
#include <cstdio>
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
