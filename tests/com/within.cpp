// A program that calls the component from within its own calls, wherever its code runs meanwhile. Its arguments are a
// subject, see `main`, and a device's serial and network port.

#include <winsock.h>

#include <atomic>
#include <utility>

#include "tests/com/till.h"

namespace {

constexpr UINT kAreYouThere = WM_APP;
constexpr UINT kPosted = WM_APP + 1;
constexpr wchar_t kBusyText[] = L"Απασχολημένο σε άλλη λειτουργία";

/// The variables of a caller that has them of any type.
VARIANT anyResult, anyText;

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

void sellInVariants(const wchar_t* name) {
  anyResult.vt = VT_I2;
  anyResult.iVal = 0;  // what will come of it, too
  auto arguments = itemSale(number(1), number(1), outcome, true, name);
  arguments[5] = reference(VT_VARIANT, anyResult);
  arguments[6] = reference(VT_VARIANT, anyText);
  call(till->module, L"ItemSale", arguments);
  outcome.result = anyResult.iVal;
  SysReAllocString(&outcome.text, anyText.bstrVal);
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
  Windows::happens = &Guests::comeIn;
  const struct {
    const char* what;
    std::function<void()> outer;
    short result;
    const wchar_t* text;
    int boxes = 0;
  } situations[] = {
      {"a wait", [] { till->sell(L"busy0"); }, 0, L"00/00/06/"},
      {"a wait of another kind of caller", [] { sellInVariants(L"busy1"); }, 0, L"00/00/06/"},
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
    expect("they do when the focus comes back", Windows::hadAllWithFocus);
    Windows::pump();
  }
}

/// Another thread that looks whether the till is alive, as the system does, and what the operator reads.
class Watcher {
 public:
  Watcher() : thread_(CreateThread(nullptr, 0, &Watcher::watch, this, 0, nullptr)) {}
  Watcher(const Watcher&) = delete;
  Watcher& operator=(const Watcher&) = delete;
  ~Watcher() = default;

  void end() {
    isOver_ = true;
    Windows::pump();
    expect("the watching ends", WaitForSingleObject(thread_, 20000) == WAIT_OBJECT_0);
    const int answered = answers, unanswered = silences;
    // A window that is not served answers hardly ever; on a busy machine one answer may be late.
    if (answered < 20 || unanswered * 10 > answered)
      std::printf("FAIL %d answers, %d silences\n", answered, unanswered);
    expect("the windows are painted", Windows::seen[WM_PAINT] > 10);
    expect("calls come in from there", Guests::came > 20);
    expect("the windows take input again", Windows::areEnabled());
  }

  std::atomic<int> answers, silences;
  /// How often a wait's window answered, and how often it told that the register is silent.
  std::atomic<int> waits, told;

 private:
  static DWORD WINAPI watch(void* self) { return static_cast<Watcher*>(self)->watch(), 0; }
  void watch() {
    constexpr UINT kPatience = 4500;  // of the system: five seconds
    constexpr int kStateLabel = 101;
    while (!isOver_) {
      InvalidateRect(Windows::first, nullptr, TRUE);
      const LRESULT answer = SendMessageTimeoutW(Windows::first, kAreYouThere, 0, 0, SMTO_NORMAL, kPatience, nullptr);
      ++(answer != 0 ? answers : silences);
      wchar_t text[100] = {};
      if (SendMessageTimeoutW(GetDlgItem(find(L"MirvaneWait"), kStateLabel), WM_GETTEXT, std::size(text),
                              reinterpret_cast<LPARAM>(text), SMTO_NORMAL, kPatience, nullptr) != 0) {
        ++waits;
        if (std::wstring(text) == L"Κατάσταση [-4]") ++told;
      }
      Sleep(50);
    }
  }

  std::atomic<bool> isOver_ = false;
  HANDLE thread_;
};

void sellWatched(const wchar_t* name, bool suppress) {
  PostMessageW(Windows::first, kPosted, 0, 0);
  for (int& count : Windows::seen) count = 0;
  Guests::areLet = true;
  const short result = till->sell(name, suppress);
  Guests::areLet = false;
  expect("the outcome", result == 0 && std::wstring(outcome.text) == L"00/00/06/");
}

/// A silent register: nothing of the program runs but what paints and answers.
void silence(const wchar_t* name, bool suppress) {
  start(suppress ? SW_SHOWNOACTIVATE : SW_SHOW);
  Windows::happens = &Guests::comeIn;
  Watcher watcher;
  sellWatched(name, suppress);
  const auto* const seen = Windows::seen;
  expect("no timer runs, and nothing posted comes", seen[WM_TIMER] + seen[kPosted] == 0);
  expect("no window takes the focus", seen[WM_ACTIVATE] + seen[WM_ACTIVATEAPP] == 0);
  watcher.end();
  expect("what was posted comes later", seen[kPosted] == 1);
  expect("a window tells it, unless errors are suppressed", suppress ? watcher.waits == 0 : watcher.told > 0);
}

/// A register that falls silent at a look within a wait, whose window goes on all the same.
void look() {
  start(SW_SHOWNOACTIVATE);
  Windows::happens = &Guests::comeIn;
  Watcher watcher;
  sellWatched(L"busy0", true);
  watcher.end();
  expect("the window goes on", watcher.waits > 20);
}

}  // namespace

int main(int, char** arguments) {
  constexpr Subject kSubjects[] = {{"guests", guests},
                                   {"silence", [] { silence(L"silent", false); }},
                                   {"suppressed", [] { silence(L"silenced", true); }},
                                   {"look", look}};
  return runSubject(kSubjects, arguments);
}
