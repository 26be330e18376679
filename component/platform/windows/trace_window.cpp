#include "platform/windows/trace_window.h"

#include <memory>
#include <mutex>
#include <utility>

#include "platform/windows/window.h"

namespace mirvane::platform {
namespace {

// Lengths for 96 dots per inch.
constexpr int kTraceWidth = 560;
constexpr int kTraceHeight = 240;

// The oldest line is removed beyond this number.
constexpr LRESULT kTraceLines = 500;

// Twenty updates per second look continuous.
constexpr UINT kTraceInterval = 50;

constexpr UINT kNews = WM_APP;

// Lines in transit from the program's thread to the window's.
struct Feed {
  std::mutex mutex;
  std::wstring lines;
  // Null until the window is created.
  HWND window = nullptr;
  // The window has been notified of new lines.
  bool told = false;
  // The window is gone, or must close as soon as it is created.
  bool closed = false;
};

class TraceWindow final : public Window {
 public:
  explicit TraceWindow(Feed& feed) : feed_(feed) {
    const RECT area = make({L"MirvaneTrace", L"Varlen Fiscal", 0, WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 0}, nullptr);
    if (window() != nullptr) {
      const int width = scaled(kTraceWidth);
      const int height = scaled(kTraceHeight);
      SetWindowPos(window(), nullptr, area.right - width, area.bottom - height, width, height,
                   SWP_NOZORDER | SWP_NOACTIVATE);
      ShowWindow(window(), SW_SHOWNOACTIVATE);
    }
    const std::lock_guard lock(feed_.mutex);
    feed_.window = window();
    if (window() == nullptr) feed_.closed = true;
    // Lines that came before the window was created.
    feed_.told = PostMessageW(window(), feed_.closed ? WM_CLOSE : kNews, 0, 0) != FALSE;
  }

  // Runs until the window is closed.
  void run() const {
    MSG message;
    while (window() != nullptr && GetMessageW(&message, nullptr, 0, 0) > 0) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }

 private:
  LRESULT handle(UINT message, WPARAM first, LPARAM second) override {
    switch (message) {
      case WM_CREATE:
        // A text field scrolls by itself, and its text can be copied.
        text_ = CreateWindowExW(0, L"EDIT", nullptr,
                                WS_CHILD | WS_VISIBLE | WS_VSCROLL | WS_HSCROLL | ES_MULTILINE | ES_READONLY |
                                    ES_AUTOVSCROLL | ES_AUTOHSCROLL,
                                0, 0, 0, 0, window(), nullptr, ownModule(), nullptr);
        SendMessageW(text_, EM_SETLIMITTEXT, 0, 0);
        return 0;
      case WM_SIZE:
        MoveWindow(text_, 0, 0, LOWORD(second), HIWORD(second), TRUE);
        return 0;
      case WM_CTLCOLORSTATIC:  // sent by a read-only text field
        return DefWindowProcW(window(), WM_CTLCOLOREDIT, first, second);
      case WM_SETFOCUS:
        SetFocus(text_);
        return 0;
      case kNews:
        SetTimer(window(), kNews, kTraceInterval, nullptr);
        return 0;
      case WM_TIMER:
        KillTimer(window(), kNews);
        show(takeLines());
        return 0;
      case WM_CLOSE:
        DestroyWindow(window());
        return 0;
      case WM_DESTROY: {
        const std::lock_guard lock(feed_.mutex);
        feed_.window = nullptr;
        feed_.closed = true;
        return 0;
      }
      default:
        return Window::handle(message, first, second);
    }
  }

  void resolutionChanged() override {
    const Font before = std::exchange(font_, font(L"Courier New", 9, FIXED_PITCH | FF_MODERN));
    SendMessageW(text_, WM_SETFONT, reinterpret_cast<WPARAM>(font_.get()), TRUE);
  }

  std::wstring takeLines() {
    const std::lock_guard lock(feed_.mutex);
    feed_.told = false;
    return std::exchange(feed_.lines, {});
  }

  void show(const std::wstring& lines) const {
    SendMessageW(text_, WM_SETREDRAW, FALSE, 0);
    const auto end = static_cast<WPARAM>(GetWindowTextLengthW(text_));
    SendMessageW(text_, EM_SETSEL, end, static_cast<LPARAM>(end));
    SendMessageW(text_, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(lines.c_str()));
    if (const LRESULT surplus = SendMessageW(text_, EM_GETLINECOUNT, 0, 0) - kTraceLines; surplus > 0) {
      SendMessageW(text_, EM_SETSEL, 0, SendMessageW(text_, EM_LINEINDEX, static_cast<WPARAM>(surplus), 0));
      SendMessageW(text_, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L""));
    }
    SendMessageW(text_, WM_VSCROLL, SB_BOTTOM, 0);
    SendMessageW(text_, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(text_, nullptr, TRUE);
  }

  Feed& feed_;
  HWND text_ = nullptr;
  Font font_;
};

// Never destroyed: the process may end this thread before the program's last line.
std::shared_ptr<Feed>& feed() {
  static auto& shared = *new std::shared_ptr<Feed>;
  return shared;
}

DWORD WINAPI runTraceWindow(void* given) {
  const std::unique_ptr<std::shared_ptr<Feed>> own(static_cast<std::shared_ptr<Feed>*>(given));
  TraceWindow(**own).run();
  return 0;
}

bool startTraceWindow(const std::shared_ptr<Feed>& lines) {
  auto given = std::make_unique<std::shared_ptr<Feed>>(lines);
  const HANDLE thread = CreateThread(nullptr, 0, &runTraceWindow, given.get(), 0, nullptr);
  if (thread == nullptr) return false;
  static_cast<void>(given.release());
  CloseHandle(thread);
  return true;
}

bool isClosed(Feed& lines) {
  const std::lock_guard lock(lines.mutex);
  return lines.closed;
}

}  // namespace

void showTraceWindow(bool shown) {
  std::shared_ptr<Feed>& current = feed();
  if (shown) {
    if (current != nullptr && !isClosed(*current)) return;
    current = std::make_shared<Feed>();
    if (!startTraceWindow(current)) current = nullptr;
  } else if (const std::shared_ptr<Feed> last = std::exchange(current, nullptr)) {
    const std::lock_guard lock(last->mutex);
    last->closed = true;
    if (last->window != nullptr) PostMessageW(last->window, WM_CLOSE, 0, 0);
  }
}

void addToTraceWindow(TextView line) {
  if (feed() == nullptr) return;
  Feed& lines = *feed();
  const std::lock_guard lock(lines.mutex);
  if (lines.closed) return;
  for (const char16_t c : line) {
    constexpr const wchar_t* kDigits = L"0123456789ABCDEF";
    // Frames are full of control characters, which a text field does not show.
    if (c < u' ') {
      lines.lines += {L'<', kDigits[c / 16], kDigits[c % 16], L'>'};
    } else {
      lines.lines += static_cast<wchar_t>(c);
    }
  }
  lines.lines += L"\r\n";
  if (!lines.told && lines.window != nullptr) lines.told = PostMessageW(lines.window, kNews, 0, 0) != FALSE;
}

}  // namespace mirvane::platform
