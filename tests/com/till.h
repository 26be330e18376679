#pragma once

#include <cstring>
#include <iterator>

#include "tests/com/caller.h"

// A till with windows, for the programs whose code runs within their calls.

/// One for all calls, from outside and from within.
inline Outcome outcome;
/// A device's serial and network port.
inline std::wstring port, networkPort;

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

inline Till* till;

/// A window of this program's.
inline HWND find(const wchar_t* windowClass) {
  HWND window = nullptr;
  DWORD process = 0;
  do {
    window = FindWindowExW(nullptr, window, windowClass, nullptr);
    GetWindowThreadProcessId(window, &process);
  } while (window != nullptr && process != GetCurrentProcessId());
  return window;
}

inline bool stands(const wchar_t* windowClass) { return find(windowClass) != nullptr; }

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
    if (message == WM_SETFOCUS) hadAllWithFocus = areEnabled();
    if (message == WM_TIMER && beat) beat();
    if (happens) happens();
    return DefWindowProcW(window, message, first_, second_);
  }

  static bool areEnabled() { return IsWindowEnabled(first) != FALSE && IsWindowEnabled(second) != FALSE; }

  static inline HWND first, second;
  /// How many of each message came.
  static inline int seen[WM_APP + 2];
  /// Whether all windows took input when the focus came last.
  static inline bool hadAllWithFocus = false;
  /// What the program does at each beat of a timer, and whatever happens to a window.
  static inline std::function<void()> beat, happens;
};

inline void start(int showing = SW_SHOW) {
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  till = new Till;
  expect("Connect_", till->connect() == 0);
  Windows::make(showing);
}

struct Subject {
  const char* name;
  void (*run)();
};

/// Runs the subject that the first argument names, with the ports behind it, and ends the program.
template <std::size_t N>
int runSubject(const Subject (&subjects)[N], char** arguments) {
  const std::string name = arguments[1], serial = arguments[2], network = arguments[3];
  port = std::wstring(serial.begin(), serial.end());
  networkPort = std::wstring(network.begin(), network.end());
  for (const Subject& subject : subjects) {
    if (name == subject.name) subject.run();
  }
  std::puts("ok");
  std::fflush(stdout);
  return TerminateProcess(GetCurrentProcess(), 0) ? 0 : 1;  // what is still held is no subject here
}
