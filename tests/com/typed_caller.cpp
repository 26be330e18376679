// A caller as a compiled program is one: typed references, of the member's own types and of others, and named
// arguments. Prints FAIL lines and, at the end, "ok". The null driver answers; no device is needed.

#include <ole2.h>

#include <cstdio>
#include <vector>

namespace {

IDispatch* driver = nullptr;

template <class T>
VARIANT reference(VARTYPE type, T& variable) {
  VARIANT value{};
  value.vt = static_cast<VARTYPE>(VT_BYREF | type);
  value.byref = &variable;
  return value;
}

/// `arguments` in COM's order: the named ones first, then the others, the last one foremost.
HRESULT call(const wchar_t* member, std::vector<VARIANT> arguments, std::vector<const wchar_t*> named = {}) {
  std::vector<LPOLESTR> names{const_cast<wchar_t*>(member)};
  for (const wchar_t* name : named) names.push_back(const_cast<wchar_t*>(name));
  std::vector<DISPID> ids(names.size());
  const HRESULT known = driver->GetIDsOfNames(IID_NULL, names.data(), static_cast<UINT>(names.size()), 0, ids.data());
  if (FAILED(known)) return known;
  DISPPARAMS given{arguments.data(), ids.data() + 1, static_cast<UINT>(arguments.size()),
                   static_cast<UINT>(named.size())};
  return driver->Invoke(ids[0], IID_NULL, 0, DISPATCH_METHOD, &given, nullptr, nullptr, nullptr);
}

void expect(const char* what, bool holds) {
  if (!holds) std::printf("FAIL %s\n", what);
}

}  // namespace

int main() {
  CLSID id{};
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  if (FAILED(CLSIDFromProgID(L"VarlenFiscalQ7734.fiscalNullModule", &id)) ||
      FAILED(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, reinterpret_cast<void**>(&driver)))) {
    std::puts("FAIL the DLL is not registered");
    return 1;
  }
  short lines = 3, result = 7;
  LONG wide = 7;
  unsigned char small = 7;
  double real = 7;
  VARIANT_BOOL silent = VARIANT_TRUE;
  BSTR text = nullptr, unused = SysAllocString(L"3");
  const VARIANT outcome = reference(VT_BSTR, text), flag = reference(VT_BOOL, silent);

  for (const VARIANT& variable :
       {reference(VT_I2, result), reference(VT_I4, wide), reference(VT_UI1, small), reference(VT_R8, real)}) {
    expect("a number of any type takes Result",
           call(L"FeedPaper", {flag, outcome, variable, reference(VT_I2, lines)}) == S_OK);
  }
  expect("Result in each", result == 100 && wide == 100 && small == 100 && real == 100);
  expect("Exresult", SysStringLen(text) == 27);
  result = 7;
  expect("a text for a number",
         call(L"FeedPaper", {flag, outcome, reference(VT_I2, result), reference(VT_BSTR, unused)}) == S_OK);
  expect("a number cannot take Exresult", call(L"FeedPaper", {flag, reference(VT_I4, wide), reference(VT_I2, result),
                                                              reference(VT_I2, lines)}) == DISP_E_TYPEMISMATCH);
  result = 7;
  expect("named arguments, in any order",
         call(L"feedpaper", {reference(VT_I2, result), flag, outcome, reference(VT_I2, lines)},
              {L"Result", L"SupressError_", L"Exresult", L"LINES_"}) == S_OK &&
             result == 100);
  expect("an unknown name", call(L"FeedPaper", {flag}, {L"Lines"}) == DISP_E_UNKNOWNNAME);
  expect("too few", call(L"FeedPaper", {flag, outcome}) == DISP_E_BADPARAMCOUNT);
  SysFreeString(text);
  SysFreeString(unused);
  driver->Release();
  CoUninitialize();
  std::puts("ok");
  return 0;
}
