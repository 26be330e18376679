#include <ole2.h>
#include <psapi.h>

#include <fstream>
#include <initializer_list>
#include <vector>

#include "bench/till.h"
#include "text/code_page.h"

namespace mirvane::bench {
namespace {

const wchar_t* wide(TextView text) { return reinterpret_cast<const wchar_t*>(text.data()); }

VARIANT reference(VARTYPE type, void* variable) {
  VARIANT value{};
  value.vt = static_cast<VARTYPE>(VT_BYREF | type);
  value.byref = variable;
  return value;
}

// A program that was compiled against nothing: names at run time, typed references.
class ComTill : public Till {
 public:
  ComTill() {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    facade_ = create(L"VarlenFiscalQ7734.fiscalTrevikModule");
    journal_ = create(L"VarlenFiscalQ7734.FiscalJournal");
  }
  ~ComTill() override {
    journal_->Release();
    facade_->Release();
    CoUninitialize();
  }

  void connect(const Text& port) override {
    BSTR name = SysAllocString(wide(port));
    call(L"Connect_", {reference(VT_BSTR, &name), result(), text(), silent()}, 0);
    SysFreeString(name);
  }
  void disconnect() override {
    BSTR name = nullptr;
    call(L"DisConnect_", {reference(VT_BSTR, &name), result(), text(), silent()}, 1);
  }
  Text send(const Text& command) override {
    BSTR sent = SysAllocString(wide(command));
    BSTR password = nullptr;
    call(L"SendCommand_", {reference(VT_BSTR, &sent), result(), text(), silent(), reference(VT_BSTR, &password)}, 0);
    SysFreeString(sent);
    return {reinterpret_cast<const char16_t*>(text_), SysStringLen(text_)};
  }
  void sell() override {
    BSTR description = SysAllocString(wide(kItemDescription));
    double quantity = 1;
    double price = 2.5;
    double rate = 24;
    short department = 1;
    call(L"ItemSale",
         {reference(VT_BSTR, &description), reference(VT_R8, &quantity), reference(VT_R8, &price),
          reference(VT_R8, &rate), reference(VT_I2, &department), result(), text(), silent()},
         0);
    SysFreeString(description);
  }
  void setTrace(bool active) override {
    invoke(*facade_, active ? L"activateDebug" : L"DeactivateDebug", DISPATCH_METHOD, {});
  }
  void makeRecordFolder() override {
    const std::string path = componentPath();
    CreateDirectoryA((path.substr(0, path.find_last_of('\\')) + "\\records").c_str(), nullptr);
  }
  void readJournal() override {
    VARIANT no{};
    no.vt = VT_BOOL;
    const VARIANT outcome = invoke(*journal_, L"eMakeZreport", DISPATCH_METHOD, {text(), no});
    if (outcome.lVal != 0) fail(toUtf8({reinterpret_cast<const char16_t*>(text_), SysStringLen(text_)}));
  }
  void callNothing() override { invoke(*facade_, L"getFiscalType", DISPATCH_PROPERTYGET, {}); }
  std::size_t memory() override {
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters.WorkingSetSize;
  }
  std::size_t componentSize() override {
    std::ifstream file(componentPath(), std::ios::binary | std::ios::ate);
    return file ? static_cast<std::size_t>(file.tellg()) : 0;
  }

 private:
  static std::string componentPath() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(GetModuleHandleA("MirvaneEFT.dll"), path, MAX_PATH);
    return path;
  }
  VARIANT result() { return reference(VT_I2, &result_); }
  VARIANT text() { return reference(VT_BSTR, &text_); }
  VARIANT silent() { return reference(VT_BOOL, &silent_); }

  static IDispatch* create(const wchar_t* name) {
    CLSID id{};
    IDispatch* object = nullptr;
    if (FAILED(CLSIDFromProgID(name, &id)) ||
        FAILED(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, reinterpret_cast<void**>(&object)))) {
      fail("the DLL is not registered");
    }
    return object;
  }
  // What is returned is a number or nothing.
  static VARIANT invoke(IDispatch& object, const wchar_t* member, WORD access,
                        std::initializer_list<VARIANT> arguments) {
    auto* name = const_cast<wchar_t*>(member);
    DISPID id = 0;
    std::vector<VARIANT> reversed(std::rbegin(arguments), std::rend(arguments));
    DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    VARIANT returned{};
    if (FAILED(object.GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id)) ||
        FAILED(object.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, access, &parameters, &returned, nullptr, nullptr))) {
      fail("a call failed");
    }
    return returned;
  }
  void call(const wchar_t* member, std::initializer_list<VARIANT> arguments, short expected) {
    invoke(*facade_, member, DISPATCH_METHOD, arguments);
    if (result_ == expected) return;
    fail(std::to_string(result_) + " " + toUtf8({reinterpret_cast<const char16_t*>(text_), SysStringLen(text_)}));
  }

  IDispatch* facade_ = nullptr;
  IDispatch* journal_ = nullptr;
  short result_ = 0;
  BSTR text_ = nullptr;
  VARIANT_BOOL silent_ = VARIANT_TRUE;
};

}  // namespace

std::unique_ptr<Till> makeTill() { return std::make_unique<ComTill>(); }

}  // namespace mirvane::bench
