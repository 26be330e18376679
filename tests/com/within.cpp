// A program that calls the component from within its own calls, wherever its code runs meanwhile, and leaves calls
// without an end. Its arguments are a subject, see `main`, and a device's serial and network port.

#include <winsock.h>

#include <atomic>
#include <csetjmp>
#include <cstring>
#include <iterator>
#include <utility>

#include "tests/com/caller.h"

namespace {

constexpr wchar_t kBusyText[] = L"Απασχολημένο σε άλλη λειτουργία";
constexpr UINT kAreYouThere = WM_APP;
constexpr UINT kPosted = WM_APP + 1;

/// One for all calls, from outside and from within; and one in variables of any type.
Outcome outcome;
VARIANT anyResult, anyText;
std::wstring port;
std::wstring networkPort;

/// A facade, with what a till does.
struct Till {
  short connect() {
    call(module, L"Connect_", outcome.with({text(port.c_str())}));
    return outcome.result;
  }
  void disconnect() { call(module, L"DisConnect_", outcome.with({text(L"")})); }
  short sell(const wchar_t* name, bool suppress = true) { return sellSome(number(1), name, suppress); }
  short sellSome(VARIANT quantity, const wchar_t* name = L"inner", bool suppress = true) {
    const HRESULT called = call(module, L"ItemSale", itemSale(quantity, number(1), outcome, suppress, name));
    if (called != S_OK) std::printf("FAIL selling %ls: %08lX\n", name, called);
    return outcome.result;
  }
  void sellInVariants(const wchar_t* name) {
    anyResult.vt = VT_I2;
    anyResult.iVal = 0;  // what will come of it, too
    auto arguments = itemSale(number(1), number(1), outcome, true, name);
    arguments[5] = reference(VT_VARIANT, anyResult);
    arguments[6] = reference(VT_VARIANT, anyText);
    call(module, L"ItemSale", arguments);
    outcome.result = anyResult.iVal;
    SysReAllocString(&outcome.text, anyText.bstrVal);
  }
  short payByCard(double amount) {
    call(module, L"Payment", outcome.with({number(2), text(L"card"), number(amount), number(1), number(0)}));
    return outcome.result;
  }
  short readJournal() {
    BSTR errorDesc = nullptr;
    VARIANT result{};
    call(journal, L"eMakeZreport", {reference(VT_BSTR, errorDesc), flag(false), flag(true)}, DISPATCH_METHOD, &result);
    SysReAllocString(&outcome.text, errorDesc);
    return outcome.result = static_cast<short>(result.lVal);
  }
  void cancel() { call(module, L"VoidReceipt", outcome.with({})); }
  void release() { module->Release(); }

  IDispatch* module = createObject(L"fiscalTrevikModule");
  IDispatch* journal = createObject(L"FiscalJournal");
};

Till* till;

/// A window of this program's.
HWND find(const wchar_t* windowClass) {
  HWND window = nullptr;
  DWORD process = 0;
  do {
    window = FindWindowExW(nullptr, window, windowClass, nullptr);
    GetWindowThreadProcessId(window, &process);
  } while (window != nullptr && process != GetCurrentProcessId());
  return window;
}

bool stands(const wchar_t* windowClass) { return find(windowClass) != nullptr; }

/// The program's code that runs within a call: it calls in, with the variables of the outer call.
struct Guests {
  static void comeIn() {
    if (!areLet || std::exchange(areInside, true)) return;
    till->sell(L"inner");
    refused("ItemSale");
    till->payByCard(1);
    refused("Payment");
    auto arguments = outcome.with({text(L"3/S//inner///1.000/1.00/1/24/1/")});
    arguments.push_back(text(L""));
    call(till->module, L"SendCommand_", arguments);
    refused("SendCommand_");
    call(till->module, L"DrawerOpen", {reference(VT_VARIANT, anyResult), reference(VT_VARIANT, anyText), flag(false)});
    expect("DrawerOpen from within", anyResult.iVal == 14 && std::wstring(anyText.bstrVal) == kBusyText);
    BSTR errorDesc = SysAllocString(L"");
    call(till->journal, L"MakeZreport", {reference(VT_BSTR, errorDesc)});
    expect("MakeZreport from within", std::wstring(errorDesc) == std::wstring(L"14~") + kBusyText);
    expect("Connect_ from within", till->connect() == 0);
    VARIANT status{};
    expect("StatusRead from within", call(till->module, L"StatusRead", {}, DISPATCH_PROPERTYGET, &status) == S_OK);
    outcome.result = 4711;
    SysReAllocString(&outcome.text, L"overwritten");
    ++came;
    areInside = false;
  }

  static inline bool areLet = false;
  static inline int came = 0;

 private:
  static void refused(const char* what) {
    if (outcome.result == 14 && std::wstring(outcome.text) == kBusyText) return;
    std::printf("FAIL %s from within: %d %ls\n", what, outcome.result, outcome.text);
  }
  static inline bool areInside = false;
};

/// The till's windows: one with the focus, and another one. Whatever happens to them comes in.
struct Windows {
  static void make(int showing) {
    WNDCLASSW description{};
    description.lpfnWndProc = &procedure;
    description.lpszClassName = L"Till";
    RegisterClassW(&description);
    for (HWND* window : {&second, &first}) {
      const int left = window == &first ? 0 : 300;
      *window =
          CreateWindowW(L"Till", L"Till", WS_OVERLAPPEDWINDOW, left, 0, 300, 200, nullptr, nullptr, nullptr, nullptr);
      ShowWindow(*window, showing);
      SetTimer(*window, 1, 50, nullptr);
    }
    pump();
  }

  static void pump() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }

  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM first_, LPARAM second_) {
    if (message < std::size(seen)) ++seen[message];
    if (message == WM_SETFOCUS && Guests::areLet)
      expect("windows are let go before the focus comes back", areEnabled());
    if (message == WM_TIMER && beat) beat();
    Guests::comeIn();
    return DefWindowProcW(window, message, first_, second_);
  }

  static bool areEnabled() { return IsWindowEnabled(first) != FALSE && IsWindowEnabled(second) != FALSE; }

  static inline HWND first, second;
  static inline int seen[kPosted + 1];
  static inline std::function<void()> beat;
};

void start(int showing = SW_SHOW) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  till = new Till;
  expect("Connect_", till->connect() == 0);
  Windows::make(showing);
}

/// Every send fails, as where the cable was pulled.
void sellThroughDeadSocket() {
  till->disconnect();
  port = networkPort;
  expect("Connect_ over the network", till->connect() == 0);
  for (SOCKET socket = 4; socket < 0x1000; socket += 4) closesocket(socket);
  till->sell(L"unsent");
}

/// Calls from within change nothing of the call that they come into.
void guests() {
  start();
  const struct {
    const char* what;
    std::function<void()> outer;
    short result;
    const wchar_t* text;
    int boxes = 0;
  } situations[] = {
      {"a wait", [] { till->sell(L"busy0"); }, 0, L"00/00/06/"},
      {"a wait of another kind of caller", [] { till->sellInVariants(L"busy1"); }, 0, L"00/00/06/"},
      {"a card's wait", [] { till->payByCard(2); }, 0, L"00/00/02/"},
      {"a box", [] { till->sell(L"refused", false); }, 116, L"receipt limit", 1},
      {"a journal", [] { till->readJournal(); }, 0, L"0"},
      {"a network's box", [] { sellThroughDeadSocket(); }, -3, L"H ταμειακή δεν Απαντά!", 1},
  };
  static int beats, boxes;
  Windows::beat = [] {
    const HWND box = find(L"#32770");
    if (box == nullptr || ++beats % 4 != 0) return;
    expect("a box locks the other windows", IsWindowEnabled(Windows::second) == FALSE);
    ++boxes;
    PostMessageW(box, WM_COMMAND, IDOK, 0);
  };
  for (const auto& situation : situations) {
    Guests::came = boxes = 0;
    Guests::areLet = true;
    situation.outer();
    Guests::areLet = false;
    const bool isRight = outcome.result == situation.result && std::wstring(outcome.text) == situation.text;
    if (!isRight || Guests::came == 0 || boxes != situation.boxes) {
      std::printf("FAIL %s ended with %d %ls, %d boxes, %d came\n", situation.what, outcome.result, outcome.text, boxes,
                  Guests::came);
    }
    expect("the windows take input again", Windows::areEnabled());
    Windows::pump();
  }
}

/// Another thread, or the system, that looks whether the till is alive.
struct Watcher {
  static DWORD WINAPI watch(void*) {
    while (!isOver) {
      InvalidateRect(Windows::first, nullptr, TRUE);
      // The system takes a window for dead after five seconds.
      const LRESULT answer = SendMessageTimeoutW(Windows::first, kAreYouThere, 0, 0, SMTO_NORMAL, 4500, nullptr);
      ++(answer != 0 ? answers : silences);
      if (stands(L"MirvaneWait")) ++waits;
      Sleep(50);
    }
    return 0;
  }

  static inline std::atomic<bool> isOver = false;
  static inline std::atomic<int> answers, silences, waits;
};

void silence(bool suppress) {
  start(suppress ? SW_SHOWNOACTIVATE : SW_SHOW);
  const HANDLE watcher = CreateThread(nullptr, 0, &Watcher::watch, nullptr, 0, nullptr);
  PostMessageW(Windows::first, kPosted, 0, 0);
  for (int& count : Windows::seen) count = 0;
  Guests::areLet = true;
  const short result = till->sell(suppress ? L"silenced" : L"silent", suppress);
  Guests::areLet = false;
  expect("the outcome", result == 0 && std::wstring(outcome.text) == L"00/00/06/");
  const auto* const seen = Windows::seen;
  expect("no timer runs, and nothing posted comes", seen[WM_TIMER] + seen[kPosted] == 0);
  expect("no window takes the focus", seen[WM_ACTIVATE] + seen[WM_ACTIVATEAPP] == 0);
  expect("the windows are painted", seen[WM_PAINT] > 10);
  Watcher::isOver = true;
  Windows::pump();
  expect("what was posted comes later", seen[kPosted] == 1);
  expect("the watching ends", WaitForSingleObject(watcher, 20000) == WAIT_OBJECT_0);
  const int answers = Watcher::answers, silences = Watcher::silences, waits = Watcher::waits;
  std::printf("%d answers, %d silences, %d looks at the window, %d paintings\n", answers, silences, waits,
              seen[WM_PAINT]);
  expect("the till answers all the time", answers > 20 && silences == 0);
  expect("calls come in from there", Guests::came > 20);
  expect("a window tells it, unless errors are suppressed", (waits > 0) == !suppress);
  expect("the windows take input again", Windows::areEnabled());
}

DWORD WINAPI comeInElsewhere(void*) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  createObject(L"fiscalTrevikModule");
  return 0;
}

void expectFree(const char* what) {
  const HANDLE thread = CreateThread(nullptr, 0, &comeInElsewhere, nullptr, 0, nullptr);
  if (WaitForSingleObject(thread, 20000) != WAIT_OBJECT_0)
    std::printf("FAIL %s: another thread is kept waiting\n", what);
}

std::jmp_buf outside;
void* rawOutside[5];
constexpr DWORD kOwnException = 0xE0001234;

LONG CALLBACK catchOutside(EXCEPTION_POINTERS* raised) {
  if (raised->ExceptionRecord->ExceptionCode != kOwnException) return EXCEPTION_CONTINUE_SEARCH;
  longjmp(outside, 1);
}

struct Leaving {
  const char* what;
  void (*leave)();
};

void leaveFrom(const wchar_t* windowClass, short (*outer)(), const Leaving& leaving) {
  Windows::beat = [&] {
    if (!stands(windowClass)) return;
    Windows::beat = nullptr;
    leaving.leave();
  };
  const bool isRaw = std::strcmp(leaving.what, "raw") == 0;
  if (isRaw ? __builtin_setjmp(rawOutside) == 0 : setjmp(outside) == 0) {
    outer();
    std::printf("FAIL %ls was not left by %s\n", windowClass, leaving.what);
  }
  if (!isRaw) expectFree(leaving.what);
  if (isRaw) till->sell(L"after");
  if (stands(windowClass)) std::printf("FAIL %ls stands after %s\n", windowClass, leaving.what);
  if (!Windows::areEnabled()) std::printf("FAIL windows are locked after %s from %ls\n", leaving.what, windowClass);
  const Environment before = Environment::now();
  kDelphi.set();
  const short result = till->sell(L"after");
  const Environment after = Environment::now();
  before.set();
  if (result != 0) std::printf("FAIL after %s from %ls: %d %ls\n", leaving.what, windowClass, result, outcome.text);
  expect("floating point after a call that was left", after == kDelphi);
  till->cancel();
}

/// A call from within that is left alone: the one that it came into goes on.
void leftWithin() {
  HostObject object([](VARIANT&) -> HRESULT { longjmp(outside, 1); });
  Windows::beat = [&] {
    if (stands(L"MirvaneWait") && setjmp(outside) == 0) till->sellSome(object.argument());
  };
  expect("a call goes on that another one was left in", till->sell(L"busy0") == 0);
  Windows::beat = nullptr;
}

void left() {
  start();
  AddVectoredExceptionHandler(1, &catchOutside);
  const Leaving raw{"raw", [] { __builtin_longjmp(rawOutside, 1); }};
  for (const Leaving& leaving : {Leaving{"jump", [] { longjmp(outside, 1); }},
                                 Leaving{"exception", [] { RaiseException(kOwnException, 0, 0, nullptr); }}}) {
    leaveFrom(
        L"MirvaneWait", [] { return till->sell(L"left"); }, leaving);
    leaveFrom(
        L"#32770", [] { return till->sell(L"refused", false); }, leaving);
    leaveFrom(
        L"MirvaneJournal", [] { return till->readJournal(); }, leaving);
  }
  leftWithin();
  // Nobody learns of this one before the next call.
  leaveFrom(
      L"MirvaneWait", [] { return till->sell(L"left"); }, raw);
}

DWORD WINAPI letGoOf(void* facade) {
  static_cast<Till*>(facade)->release();
  return 0;
}

/// Facades that end while one of them sells. Each row is what happens meanwhile, with `till` and a second one.
void released() {
  start();
  static Till* other;
  static HANDLE collector;
  const struct {
    const char* what;
    const wchar_t* sale;
    void (*meanwhile)();
    short next;
  } rows[] = {
      {"its own facade, and another one connects", L"busy1",
       [] {
         till->release();
         expect("Connect_ from within", other->connect() == 0);
       },
       0},
      {"another one connects, and then its own facade goes", L"busy2",
       [] {
         expect("Connect_ from within", other->connect() == 0);
         till->release();
       },
       100},
      {"a garbage collector's thread lets go of it, which waits for nobody", L"busy3",
       [] {
         collector = CreateThread(nullptr, 0, &letGoOf, till, 0, nullptr);
         expect("the collector goes on", WaitForSingleObject(collector, 20000) == WAIT_OBJECT_0);
         expect("Connect_ from within", other->connect() == 0);
       },
       0},
  };
  for (const auto& row : rows) {
    till->release();
    till = new Till;
    till->connect();
    other = new Till;
    Windows::beat = [&] {
      if (!stands(L"MirvaneWait")) return;
      Windows::beat = nullptr;
      row.meanwhile();
    };
    if (till->sell(row.sale) != 0) std::printf("FAIL %s ends the sale: %d\n", row.what, outcome.result);
    if (Windows::beat) std::printf("FAIL %ls did not wait\n", row.sale);
    till = other;
    const short next = till->sell(L"after");
    if (next != row.next) std::printf("FAIL %s: the next sale gives %d\n", row.what, next);
  }
}

HANDLE isInside;
bool endsItself;

void CALLBACK beatElsewhere(HWND, UINT, UINT_PTR, DWORD) {
  static bool isTold = false;
  if (isTold && endsItself) ExitThread(0);
  isTold = SetEvent(isInside) != FALSE;
}

DWORD WINAPI sellElsewhere(void*) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  Till own;
  Outcome its;
  SetTimer(nullptr, 0, 100, &beatElsewhere);
  call(own.module, L"ItemSale", itemSale(number(1), number(1), its, true, L"left"));
  std::puts("FAIL a thread came back that should have ended inside");
  return 0;
}

/// Threads that end inside: one by itself, while another one waits for its turn, and one that is ended.
void ended() {
  start();
  isInside = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  for (const bool itself : {true, false}) {
    endsItself = itself;
    const HANDLE thread = CreateThread(nullptr, 0, &sellElsewhere, nullptr, 0, nullptr);
    expect("the thread is inside", WaitForSingleObject(isInside, 20000) == WAIT_OBJECT_0);
    if (!itself) TerminateThread(thread, 0);
    if (till->sell(L"after") != 0) std::printf("FAIL the sale after it: %d %ls\n", outcome.result, outcome.text);
  }
}

}  // namespace

int main(int, char** arguments) {
  const struct {
    const char* name;
    void (*run)();
  } subjects[] = {{"guests", guests},
                  {"silence", [] { silence(false); }},
                  {"suppressed", [] { silence(true); }},
                  {"left", left},
                  {"released", released},
                  {"ended", ended}};
  SetConsoleOutputCP(CP_UTF8);
  const std::string name = arguments[2];
  port = std::wstring(name.begin(), name.end());
  const std::string networkName = arguments[3];
  networkPort = std::wstring(networkName.begin(), networkName.end());
  for (const auto& subject : subjects) {
    if (std::strcmp(subject.name, arguments[1]) == 0) subject.run();
  }
  std::puts("ok");
  std::fflush(stdout);
  TerminateProcess(GetCurrentProcess(), 0);  // what is still held is no subject here
}
