// A program that the component runs in, with what programs bring along: other settings, other threads, another runtime
// library, no screen. Its arguments are a subject, see `main`, and the port of a device.

#include <cstring>

#include "tests/com/caller.h"

namespace {

HANDLE go, selling, finished;
HWND otherWindow;

/// Runs on this thread's windows while the component waits.
struct Pulse {
  Pulse() {
    beats = answers = 0;
    timer = SetTimer(nullptr, 0, 50, &beat);
  }
  Pulse(const Pulse&) = delete;
  Pulse& operator=(const Pulse&) = delete;
  ~Pulse() { KillTimer(nullptr, timer); }

  static void CALLBACK beat(HWND, UINT, UINT_PTR, DWORD) {
    if (++beats == 5) SetEvent(selling);
    if (beats > 10 && otherWindow != nullptr &&
        SendMessageTimeoutW(otherWindow, WM_NULL, 0, 0, SMTO_NORMAL, 200, nullptr) != 0) {
      ++answers;
    }
    seen = Environment::now();
    if (const HWND box = FindWindowW(L"#32770", nullptr)) PostMessageW(box, WM_COMMAND, IDOK, 0);
  }

  UINT_PTR timer;
  static inline int beats = 0;
  static inline int answers = 0;
  static inline Environment seen;
};

/// The compiler's shared runtime library, as any program or add-in may have loaded it.
void runtime(const wchar_t*) {
  for (const wchar_t* library : {L"libwinpthread-1.dll", L"libgcc_s_dw2-1.dll"}) {
    expect("the shared runtime library is there", LoadLibraryW(library) != nullptr);
  }
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  IDispatch* const module = createObject(L"fiscalTrevikModule");
  HostObject broken([](VARIANT&) { return E_ACCESSDENIED; });
  Outcome outcome;
  const struct {
    HRESULT expected;
    IDispatch* object;
    const wchar_t* member;
    std::vector<VARIANT> arguments;
    WORD flags = DISPATCH_METHOD;
  } cases[] = {
      {DISP_E_TYPEMISMATCH, module, L"ItemSale", itemSale(text(L"abc"), number(1), outcome)},
      {DISP_E_OVERFLOW, module, L"ItemSale", itemSale(number(1), number(40000), outcome)},
      {DISP_E_EXCEPTION, module, L"ItemSale", itemSale(broken.argument(), number(1), outcome)},
      {DISP_E_BADPARAMCOUNT, module, L"ItemSale", {}},
      {DISP_E_MEMBERNOTFOUND, module, L"setTaxCardNumber", outcome.with({text(L"1")})},
      {static_cast<HRESULT>(0x800A005B),
       createObject(L"FiscalJournal"),
       L"bBox",
       {broken.argument()},
       DISPATCH_PROPERTYPUT},
  };
  for (const auto& row : cases) {
    auto arguments = row.arguments;
    if (row.expected == DISP_E_MEMBERNOTFOUND) arguments.push_back(text(L""));
    const HRESULT got = call(row.object, row.member, arguments, row.flags);
    if (got != row.expected) std::printf("FAIL %08lX came as %08lX\n", row.expected, got);
  }
}

/// More often than a process has places for thread-local data.
void cycles(const wchar_t*) {
  for (const bool apartmentEnds : {true, false}) {
    for (int i = 0; i < 1300; ++i) {
      if (apartmentEnds || i == 0) CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
      createObject(L"fiscalTrevikModule")->Release();
      apartmentEnds ? CoUninitialize() : CoFreeUnusedLibrariesEx(0, 0);
    }
  }
  Outcome outcome;
  expect("an error after all that", call(createObject(L"fiscalNullModule"), L"ItemSale",
                                         itemSale(text(L"abc"), number(1), outcome)) == DISP_E_TYPEMISMATCH);
}

void floatingPoint(const wchar_t*) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  auto* const factory = static_cast<IClassFactory*>(create(L"clsEFT", IID_IClassFactory));
  IDispatch* const driver = createObject(L"fiscalNullModule");
  IDispatch* fresh = nullptr;
  ITypeInfo* info = nullptr;
  Environment inHost;
  HostObject object([&](VARIANT& result) {
    inHost = Environment::now();
    return result = text(L"2,5"), S_OK;
  });
  Outcome outcome;
  struct Entry {
    const char* what;
    bool hostRuns;
    std::function<void()> enter;
  };
  const Entry entries[] = {
      {"CreateInstance", false,
       [&] { factory->CreateInstance(nullptr, IID_IDispatch, reinterpret_cast<void**>(&fresh)); }},
      {"GetIDsOfNames", false, [&] { idOf(driver, L"ItemSale"); }},
      {"GetTypeInfo", false, [&] { driver->GetTypeInfo(0, 0, &info); }},
      {"a call", false, [&] { call(driver, L"ItemSale", itemSale(text(L"2,5"), number(1), outcome)); }},
      {"an error", false, [&] { call(driver, L"ItemSale", itemSale(text(L"x"), number(1), outcome)); }},
      {"an object's value", true, [&] { call(driver, L"ItemSale", itemSale(object.argument(), number(1), outcome)); }},
      {"the last Release", false, [&] { fresh->Release(); }},
  };
  const auto check = [&](const Entry& entry, const Environment& host) {
    const Environment before = Environment::now();
    host.set();
    entry.enter();
    const Environment after = Environment::now();
    before.set();
    const Environment& within = entry.hostRuns ? inHost : host;
    if (after == host && within.settings() == host) return;
    std::printf("FAIL %s: %x %x, within %x %x, after %x %x\n", entry.what, host.x87, host.sse, within.x87, within.sse,
                after.x87, after.sse);
  };
  // Both units raising, either of them; 24 bits; rounding up; older Delphi and newer.
  for (const Environment host :
       {Environment{0x0372, 0x1900}, Environment{0x0372, 0x1F80}, Environment{0x037F, 0x1900},
        Environment{0x007F, 0x1F80}, Environment{0x0B7F, 0x5F80}, Environment{0x1372, 0x1F80}, kDelphi}) {
    for (const Entry& entry : entries) check(entry, host);
  }
  check({"a message box", true,
         [&] {
           const Pulse pulse;
           call(driver, L"ItemSale", itemSale(number(1), number(1), outcome, false));
           inHost = Pulse::seen;
         }},
        kDelphi);
}

/// One thread's side of what follows.
struct Till {
  Till(IDispatch* facade, const wchar_t* question) : module(facade), command(question) {}

  IDispatch* module;
  const wchar_t* command;
  std::wstring expected;

  std::wstring ask() {
    Outcome outcome;
    const HRESULT called = call(
        module, L"SendCommand_",
        {text(command), reference(VT_I2, outcome.result), reference(VT_BSTR, outcome.text), flag(true), text(L"")});
    std::wstring reply = called == S_OK && outcome.result == 0 ? outcome.text : L"no answer";
    SysFreeString(outcome.text);
    return reply;
  }
  /// What stands behind the status bytes.
  std::wstring data() {
    const std::wstring reply = ask();
    return reply.starts_with(L"00/") && reply.size() > 9 ? reply.substr(9) : reply;
  }
  void askOften(int times) {
    int wrong = 0;
    for (int i = 0; i < times; ++i) {
      if (data() != expected) ++wrong;
      // One object for both.
      VARIANT status{};
      if (call(module, L"StatusRead", {}, DISPATCH_PROPERTYGET, &status) != S_OK) ++wrong;
      VariantClear(&status);
    }
    if (wrong > 0) std::printf("FAIL %d of %d answers to %ls are another's\n", wrong, times, command);
  }
};

/// An apartment of its own; or a thread that COM does not know, with the other's object.
DWORD WINAPI otherThread(void* object) {
  if (object == nullptr) CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  Till till(object != nullptr ? static_cast<IDispatch*>(object) : createObject(L"fiscalTrevikModule"), L"v/");
  till.expected = till.data();
  otherWindow = CreateWindowW(L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  SetEvent(finished);
  WaitForSingleObject(go, INFINITE);
  till.askOften(100);
  SetEvent(finished);

  WaitForSingleObject(selling, INFINITE);
  till.askOften(1);
  SetEvent(finished);
  return 0;
}

void share(Till& till, IDispatch* object, const wchar_t* name) {
  const HANDLE other = CreateThread(nullptr, 0, &otherThread, object, 0, nullptr);
  WaitForSingleObject(finished, INFINITE);
  till.expected = till.data();
  SetEvent(go);
  till.askOften(100);
  WaitForSingleObject(finished, INFINITE);

  // The device is busy, and the operator reads so in a window.
  const Pulse pulse;
  Outcome outcome;
  const auto sale = itemSale(number(1), number(1), outcome, false, name);
  const Environment before = Environment::now();
  kDelphi.set();
  call(till.module, L"ItemSale", sale);
  const Environment after = Environment::now();
  before.set();
  expect("ItemSale", outcome.result == 0);
  expect("the other's windows go on while it waits for its turn", Pulse::answers > 5);
  expect("floating point within and after a wait", Pulse::seen.settings() == kDelphi && after == kDelphi);
  WaitForSingleObject(finished, INFINITE);
  WaitForSingleObject(other, INFINITE);
}

void threads(const wchar_t* port) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  for (HANDLE* event : {&go, &selling, &finished}) *event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  Till till(createObject(L"fiscalTrevikModule"), L"9/");
  Outcome outcome;
  expect("Connect_", call(till.module, L"Connect_", outcome.with({text(port)})) == S_OK && outcome.result == 0);
  share(till, nullptr, L"first");
  share(till, till.module, L"second");
}

/// How the port is set that this process has opened.
void line(const wchar_t* port) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  IDispatch* const module = createObject(L"fiscalTrevikModule");
  Outcome outcome;
  call(module, L"Connect_", outcome.with({text(port)}));
  int lines = 0;
  for (std::intptr_t handle = 4; handle < 0x1000; handle += 4) {
    DCB state{};
    state.DCBlength = sizeof state;
    if (GetCommState(reinterpret_cast<HANDLE>(handle), &state) == FALSE) continue;
    ++lines;
    expect("115200,n,8,1", state.BaudRate == 115200 && state.ByteSize == 8 && state.Parity == NOPARITY);
    expect("binary", state.fBinary != 0);
    expect("the flow-control characters", state.XonChar == 0x11 && state.XoffChar == 0x13);
  }
  expect("one open line", lines == 1);
}

std::string debuggerRead;

LONG CALLBACK debugger(EXCEPTION_POINTERS* raised) {
  constexpr DWORD kDebugText = 0x40010006;
  const EXCEPTION_RECORD& record = *raised->ExceptionRecord;
  if (record.ExceptionCode != kDebugText) return EXCEPTION_CONTINUE_SEARCH;
  debuggerRead += reinterpret_cast<const char*>(record.ExceptionInformation[1]);
  return EXCEPTION_CONTINUE_EXECUTION;
}

DWORD WINAPI tooLong(void*) {
  Sleep(10000);
  std::puts("FAIL a box waits for somebody to close it");
  std::fflush(stdout);
  ExitProcess(1);
}

/// Where nobody sees a message box.
void service(const wchar_t*) {
  SetProcessWindowStation(CreateWindowStationW(L"MirvaneStation", 0, GENERIC_ALL, nullptr));
  SetThreadDesktop(CreateDesktopW(L"MirvaneDesktop", nullptr, nullptr, 0, GENERIC_ALL, nullptr));
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  CloseHandle(CreateThread(nullptr, 0, &tooLong, nullptr, 0, nullptr));
  AddVectoredExceptionHandler(1, &debugger);
  Outcome outcome;
  call(createObject(L"fiscalNullModule"), L"ItemSale", itemSale(number(1), number(1), outcome, false));
  expect("a refusal's text",
         debuggerRead.ends_with(
             ": \xCB\xDC\xE8\xEF\xF2 \xF4\xFD\xF0\xEF\xF2 \xD6\xEF\xF1\xEF\xEB. \xC5\xEA\xF4\xF5\xF0\xF9\xF4\xDE\n"));
  call(createObject(L"cTCPIP"), L"SendData", {text(L"x")});
  expect("a failed socket's text", debuggerRead.ends_with("(Ethernet)\n"));
}

DWORD WINAPI letGo(void* file) {
  Sleep(250);
  CloseHandle(file);
  return 0;
}

/// A virus scanner looks into the journal that is just being written anew.
void scanner(const wchar_t*) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  IDispatch* const journal = createObject(L"FiscalJournal");
  for (const wchar_t* content : {L"first", L"again"}) {
    const HANDLE file = CreateFileW(L"c:\\bbox\\ABC12345678\\0042\\ABC123456780042_a.txt", GENERIC_READ,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file != INVALID_HANDLE_VALUE) CloseHandle(CreateThread(nullptr, 0, &letGo, file, 0, nullptr));
    expect("saving", call(journal, L"EJFileSave", {text(L"ABC123456780042"), text(content), text(L"x")}) == S_OK);
    expect("one of them meets the scanner", (std::wcscmp(content, L"again") == 0) == (file != INVALID_HANDLE_VALUE));
  }
}

}  // namespace

int main(int, char** arguments) {
  const struct {
    const char* name;
    void (*run)(const wchar_t* port);
  } subjects[] = {{"runtime", runtime}, {"cycles", cycles}, {"floating_point", floatingPoint},
                  {"threads", threads}, {"line", line},     {"service", service},
                  {"scanner", scanner}};
  const std::string port = arguments[2];
  for (const auto& subject : subjects) {
    if (std::strcmp(subject.name, arguments[1]) == 0) subject.run(std::wstring(port.begin(), port.end()).c_str());
  }
  std::puts("ok");
  std::fflush(stdout);
  TerminateProcess(GetCurrentProcess(), 0);  // what is still held is no subject here
}
