#include "platform/windows/wait_dialog.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "platform/windows/window.h"

namespace mirvane::platform {
namespace {

// Lengths for 96 dots per inch.
constexpr int kWidth = 420;
constexpr int kHeight = 160;
constexpr int kMargin = 16;

constexpr DWORD kSecond = 1000;
constexpr UINT_PTR kTimer = 1;

class WaitDialog final : public Window {
 public:
  WaitDialog(WaitText text, const std::function<bool(WaitText&)>& tick)
      : text_(std::move(text)), tick_(tick), owner_(GetActiveWindow()) {
    const std::wstring caption = toWide(text_.caption);
    const RECT area = make({L"MirvaneWait", caption.c_str(), CS_HREDRAW | CS_VREDRAW | CS_NOCLOSE,
                            WS_POPUP | WS_CAPTION, WS_EX_DLGMODALFRAME},
                           owner_);
    if (window() == nullptr) return;
    const int width = scaled(kWidth);
    const int height = scaled(kHeight);
    SetWindowPos(window(), HWND_TOPMOST, (area.left + area.right - width) / 2, (area.top + area.bottom - height) / 2,
                 width, height, SWP_NOACTIVATE);
    makeRoom();
    SetTimer(window(), kTimer, kSecond, nullptr);
    ShowWindow(window(), SW_SHOW);
    UpdateWindow(window());
  }
  WaitDialog(const WaitDialog&) = delete;
  WaitDialog& operator=(const WaitDialog&) = delete;
  ~WaitDialog() override { lock_.release(window() != nullptr && GetActiveWindow() == window()); }

  // Returns when the wait is over, and what `tick` threw.
  std::exception_ptr run() {
    while (!over_) {
      // Not the window's timer alone: there may be no window.
      const ULONGLONG now = GetTickCount64();
      const auto left = static_cast<DWORD>(std::max(due_, now) - now);
      if (MsgWaitForMultipleObjectsEx(0, nullptr, left, QS_ALLINPUT, MWMO_INPUTAVAILABLE) == WAIT_FAILED) Sleep(left);
      messages_.dispatch();
      tickWhenDue();
    }
    return failure_;
  }

 private:
  LRESULT handle(UINT message, WPARAM first, LPARAM second) override {
    if (message != WM_TIMER) return Window::handle(message, first, second);
    // The operator moves the window: the system's own loop runs until the button is released, and has to end with the
    // wait.
    tickWhenDue();
    if (over_) SendMessageW(window(), WM_CANCELMODE, 0, 0);
    return 0;
  }

  void resolutionChanged() override {
    stateFont_ = font(L"Segoe UI", 11, VARIABLE_PITCH | FF_SWISS);
    messageFont_ = font(L"Segoe UI", 15, VARIABLE_PITCH | FF_SWISS);
  }

  // A tick takes as long as the device lets it wait, and may itself dispatch messages.
  void tickWhenDue() {
    if (ticking_ || over_ || GetTickCount64() < due_) return;
    ticking_ = true;
    try {
      over_ = !tick_(text_);
    } catch (...) {
      // Not through the system, which may have called this.
      failure_ = std::current_exception();
      over_ = true;
    }
    ticking_ = false;
    due_ = GetTickCount64() + kSecond;
    if (over_ || window() == nullptr) return;
    makeRoom();
    // Above other topmost windows too, which have come to the front meanwhile.
    SetWindowPos(window(), HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    InvalidateRect(window(), nullptr, FALSE);
    UpdateWindow(window());
  }

  // For a long message the window grows. It does not shrink again: what jumps is hard to read.
  void makeRoom() const {
    RECT client;
    RECT place;
    GetClientRect(window(), &client);
    GetWindowRect(window(), &place);
    const HDC dc = GetDC(window());
    const int missing = layOut(dc, client, DT_CALCRECT) - static_cast<int>(client.bottom);
    ReleaseDC(window(), dc);
    if (missing <= 0) return;
    SetWindowPos(window(), nullptr, place.left, place.top - missing / 2, place.right - place.left,
                 place.bottom - place.top + missing, SWP_NOZORDER | SWP_NOACTIVATE);
  }

  void draw(HDC dc, RECT client) const override {
    FillRect(dc, &client, GetSysColorBrush(COLOR_BTNFACE));
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
    OffsetRect(&client, 0, (client.bottom - layOut(dc, client, DT_CALCRECT)) / 2);
    layOut(dc, client, 0);
  }

  // Draws the two labels, or with DT_CALCRECT only measures them; the height that they take.
  int layOut(HDC dc, RECT area, UINT flags) const {
    InflateRect(&area, -scaled(kMargin), -scaled(kMargin));
    const auto label = [&](const Font& font, const Text& text) {
      const std::wstring wide = toWide(text);
      const HGDIOBJ before = SelectObject(dc, font.get());
      RECT place = area;
      flags |= DT_NOPREFIX | DT_WORDBREAK | DT_EDITCONTROL;
      DrawTextW(dc, wide.c_str(), static_cast<int>(wide.size()), &place, flags | DT_CALCRECT);
      place.right = area.right;
      if ((flags & DT_CALCRECT) == 0) DrawTextW(dc, wide.c_str(), static_cast<int>(wide.size()), &place, flags);
      SelectObject(dc, before);
      area.top = place.bottom + scaled(kMargin) / 2;
    };
    label(stateFont_, text_.state);
    label(messageFont_, text_.message);
    return area.top + scaled(kMargin) / 2;
  }

  WaitText text_;
  const std::function<bool(WaitText&)>& tick_;
  HWND owner_;
  InputLock lock_;
  PendingMessages messages_;
  Font stateFont_;
  Font messageFont_;
  ULONGLONG due_ = GetTickCount64() + kSecond;
  bool ticking_ = false;
  bool over_ = false;
  std::exception_ptr failure_;
};

}  // namespace

void runWaitDialog(WaitText text, const std::function<bool(WaitText&)>& tick) {
  const std::exception_ptr failure = WaitDialog(std::move(text), tick).run();
  if (failure != nullptr) std::rethrow_exception(failure);
}

}  // namespace mirvane::platform
