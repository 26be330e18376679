// A caller as a compiled program is one: typed references, of the member's own types and of others, and named
// arguments. Prints FAIL lines and, at the end, "ok". The null driver answers; no device is needed.

#include "tests/com/caller.h"

namespace {

IDispatch* driver = nullptr;

/// `arguments` in COM's order: the named ones first, then the others, the last one foremost.
HRESULT callNamed(const wchar_t* member, std::vector<VARIANT> arguments, std::vector<const wchar_t*> named = {}) {
  std::vector<LPOLESTR> names{const_cast<wchar_t*>(member)};
  for (const wchar_t* name : named) names.push_back(const_cast<wchar_t*>(name));
  std::vector<DISPID> ids(names.size());
  const HRESULT known = driver->GetIDsOfNames(IID_NULL, names.data(), static_cast<UINT>(names.size()), 0, ids.data());
  if (FAILED(known)) return known;
  DISPPARAMS given{arguments.data(), ids.data() + 1, static_cast<UINT>(arguments.size()),
                   static_cast<UINT>(named.size())};
  return driver->Invoke(ids[0], IID_NULL, 0, DISPATCH_METHOD, &given, nullptr, nullptr, nullptr);
}

}  // namespace

int main() {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  driver = createObject(L"fiscalNullModule");
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
           callNamed(L"FeedPaper", {flag, outcome, variable, reference(VT_I2, lines)}) == S_OK);
  }
  expect("Result in each", result == 100 && wide == 100 && small == 100 && real == 100);
  expect("Exresult", SysStringLen(text) == 27);
  result = 7;
  expect("a text for a number",
         callNamed(L"FeedPaper", {flag, outcome, reference(VT_I2, result), reference(VT_BSTR, unused)}) == S_OK);
  expect("a number cannot take Exresult",
         callNamed(L"FeedPaper", {flag, reference(VT_I4, wide), reference(VT_I2, result), reference(VT_I2, lines)}) ==
             DISP_E_TYPEMISMATCH);
  result = 7;
  expect("named arguments, in any order",
         callNamed(L"feedpaper", {reference(VT_I2, result), flag, outcome, reference(VT_I2, lines)},
                   {L"Result", L"SupressError_", L"Exresult", L"LINES_"}) == S_OK &&
             result == 100);
  expect("an unknown name", callNamed(L"FeedPaper", {flag}, {L"Lines"}) == DISP_E_UNKNOWNNAME);
  expect("too few", callNamed(L"FeedPaper", {flag, outcome}) == DISP_E_BADPARAMCOUNT);

  // What a variable held does not matter where it only takes a result.
  wide = 100000;
  VARIANT any[3] = {::text(L"abc"), {}, {}};
  any[1].vt = VT_NULL;
  any[2].vt = VT_ARRAY | VT_VARIANT;
  any[2].parray = SafeArrayCreateVector(VT_VARIANT, 0, 2);
  for (VARIANT& held : any) {
    VARIANT also = held;
    if (held.vt != VT_NULL) VariantInit(&also), VariantCopy(&also, &held);
    expect("a VARIANT that holds anything",
           callNamed(L"FeedPaper", {flag, reference(VT_VARIANT, also), reference(VT_VARIANT, held),
                                    reference(VT_I2, lines)}) == S_OK &&
               held.vt == VT_I2 && held.iVal == 100 && also.vt == VT_BSTR);
  }
  expect(
      "a number beyond Result's type",
      callNamed(L"FeedPaper", {flag, outcome, reference(VT_I4, wide), reference(VT_I2, lines)}) == S_OK && wide == 100);
  VARIANT empty{};
  const VARIANT twice = reference(VT_VARIANT, empty);
  expect("Exresult stays, in a variable that is Pass too",
         callNamed(L"GetVersionInfo", {twice, flag, twice, reference(VT_I2, result)}) == S_OK && empty.vt == VT_BSTR &&
             SysStringLen(empty.bstrVal) == 27);
  // What a member does not change keeps its type.
  VARIANT currency{}, day{};
  currency.vt = VT_CY;
  currency.cyVal.int64 = 30000;
  day.vt = VT_DATE;
  day.date = 3;
  for (VARIANT& held : {std::ref(currency), std::ref(day)}) {
    const VARTYPE before = held.vt;
    expect("a currency or a date",
           callNamed(L"FeedPaper", {flag, outcome, reference(VT_I2, result), reference(VT_VARIANT, held)}) == S_OK &&
               held.vt == before);
  }

  // A date is a text as the system writes it, and a number as the system counts.
  IDispatch* const terminal = createObject(L"clsEFT");
  VARIANT date{}, written{}, held{};
  date.vt = VT_DATE;
  date.date = 46000.5;
  VariantChangeType(&written, &date, 0, VT_BSTR);
  call(terminal, L"eftDescription", {date}, DISPATCH_PROPERTYPUT);
  call(terminal, L"eftDescription", {}, DISPATCH_PROPERTYGET, &held);
  expect("a date for a text", held.vt == VT_BSTR && std::wstring(held.bstrVal) == written.bstrVal);
  expect("a date for a number",
         callNamed(L"FeedPaper", {flag, outcome, reference(VT_I2, result), date}) == DISP_E_OVERFLOW);
  // Late-bound compilers do not know what a name stands for, and pass the identifier that they have.
  expect("a property read as a method, for another interface",
         call(terminal, L"eftDescription", {}, DISPATCH_METHOD, &held, IID_IDispatch) == S_OK && held.vt == VT_BSTR);
  driver->Release();
  CoUninitialize();
  std::puts("ok");
  return 0;
}
