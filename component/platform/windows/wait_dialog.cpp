#include "platform/windows/wait_dialog.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "platform/windows/window.h"

namespace mirvane::platform {
namespace {

// Lengths for 96 dots per inch.
constexpr int kWaitWidth = 420;
constexpr int kWaitHeight = 160;
constexpr int kMargin = 16;

constexpr DWORD kSecond = 1000;
constexpr UINT_PTR kTimer = 1;

class WaitDialog final : public WaitView, private Window, private DuringCall {
 public:
  WaitDialog(WaitText text, int showing) : text_(std::move(text)), owner_(GetActiveWindow()) {
    const std::wstring caption = toWide(text_.caption);
    const RECT area = make({L"MirvaneWait", caption.c_str(), CS_HREDRAW | CS_VREDRAW | CS_NOCLOSE,
                            WS_POPUP | WS_CAPTION | WS_CLIPCHILDREN, WS_EX_DLGMODALFRAME},
                           owner_);
    if (window() == nullptr) return;
    const int width = scaled(kWaitWidth);
    const int height = scaled(kWaitHeight);
    SetWindowPos(window(), HWND_TOPMOST, (area.left + area.right - width) / 2, (area.top + area.bottom - height) / 2,
                 width, height, SWP_NOACTIVATE);
    addLabel(kWaitStateId);
    addLabel(kWaitMessageId);
    setFonts();
    arrange();
    ShowWindow(window(), showing);
    paintNow();
  }
  WaitDialog(const WaitDialog&) = delete;
  WaitDialog& operator=(const WaitDialog&) = delete;
  ~WaitDialog() override { lock_.release(window()); }

  // Returns what `tick` threw, once the wait is over.
  std::exception_ptr run(const std::function<bool(WaitView&)>& tick) {
    tick_ = tick;
    due_ = GetTickCount64() + kSecond;
    SetTimer(window(), kTimer, kSecond, nullptr);
    while (!over_) {
      // Does not rely on the window's timer: there may be no window.
      const ULONGLONG now = GetTickCount64();
      const auto left = static_cast<DWORD>(std::max(due_, now) - now);
      if (MsgWaitForMultipleObjectsEx(0, nullptr, left, QS_ALLINPUT, MWMO_INPUTAVAILABLE) == WAIT_FAILED) Sleep(left);
      messages_.dispatch();
      tickWhenDue();
    }
    return failure_;
  }

  void show(const WaitText& text) override {
    text_ = text;
    if (window() == nullptr) return;
    arrange();
    paintNow();
  }

  void repaint() override { PendingMessages::repaint(); }

 private:
  LRESULT handle(UINT message, WPARAM first, LPARAM second) override {
    switch (message) {
      case WM_TIMER:
        // The operator moves the window: the system's own loop runs until the button is released, and must end with the
        // wait.
        tickWhenDue();
        if (over_) SendMessageW(window(), WM_CANCELMODE, 0, 0);
        return 0;
      case WM_SIZE:
        if (GetDlgItem(window(), kWaitMessageId) != nullptr) arrange();
        return 0;
      case WM_CTLCOLORSTATIC: {
        const auto dc = reinterpret_cast<HDC>(first);
        SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
        SetBkColor(dc, GetSysColor(COLOR_BTNFACE));
        return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_BTNFACE));
      }
      default:
        return Window::handle(message, first, second);
    }
  }

  void resolutionChanged() override {
    stateFont_ = font(L"Segoe UI", 11, VARIABLE_PITCH | FF_SWISS);
    messageFont_ = font(L"Segoe UI", 15, VARIABLE_PITCH | FF_SWISS);
    setFonts();
  }

  // A tick takes as long as the register needs, and may itself dispatch messages.
  void tickWhenDue() {
    if (ticking_ || over_ || GetTickCount64() < due_) return;
    ticking_ = true;
    try {
      over_ = !tick_(*this);
    } catch (...) {
      // An exception must not pass through the system, which may have called this.
      failure_ = std::current_exception();
      over_ = true;
    }
    ticking_ = false;
    due_ = GetTickCount64() + kSecond;
    if (over_ || window() == nullptr) return;
    // Also above other topmost windows that have come to the front meanwhile.
    SetWindowPos(window(), HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    paintNow();
  }

  // A standard control, which screen readers and test tools can read.
  void addLabel(int id) const {
    CreateWindowExW(0, L"STATIC", nullptr, WS_CHILD | WS_VISIBLE | SS_LEFT | SS_NOPREFIX | SS_EDITCONTROL, 0, 0, 0, 0,
                    window(), reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ownModule(), nullptr);
  }

  void setFonts() const {
    SendDlgItemMessageW(window(), kWaitStateId, WM_SETFONT, reinterpret_cast<WPARAM>(stateFont_.get()), FALSE);
    SendDlgItemMessageW(window(), kWaitMessageId, WM_SETFONT, reinterpret_cast<WPARAM>(messageFont_.get()), FALSE);
  }

  // Sets the labels' texts and places them one below the other, centred in the window. The window grows for a long
  // message and does not shrink again, because a jumping text is hard to read.
  void arrange() {
    RECT client;
    GetClientRect(window(), &client);
    const int margin = scaled(kMargin);
    const int width = static_cast<int>(client.right) - 2 * margin;
    const int stateHeight = heightOf(text_.state, stateFont_, width);
    const int messageHeight = heightOf(text_.message, messageFont_, width);
    const int height = stateHeight + margin / 2 + messageHeight;
    const int missing = height + 2 * margin - static_cast<int>(client.bottom);
    if (missing > 0) {
      RECT place;
      GetWindowRect(window(), &place);
      SetWindowPos(window(), nullptr, place.left, place.top - missing / 2, place.right - place.left,
                   place.bottom - place.top + missing, SWP_NOZORDER | SWP_NOACTIVATE);
      GetClientRect(window(), &client);
    }
    const int top = (static_cast<int>(client.bottom) - height) / 2;
    place(kWaitStateId, text_.state, {margin, top, margin + width, top + stateHeight});
    place(kWaitMessageId, text_.message, {margin, top + height - messageHeight, margin + width, top + height});
  }

  int heightOf(const Text& text, const Font& font, int width) const {
    const HDC dc = GetDC(window());
    const HGDIOBJ before = SelectObject(dc, font.get());
    RECT place{0, 0, width, 0};
    DrawTextW(dc, toWide(text).c_str(), -1, &place,
              DT_CALCRECT | DT_NOPREFIX | DT_WORDBREAK | DT_EDITCONTROL | DT_EXPANDTABS);
    SelectObject(dc, before);
    ReleaseDC(window(), dc);
    return place.bottom;
  }

  void place(int id, const Text& text, const RECT& area) const {
    const HWND label = GetDlgItem(window(), id);
    SetWindowPos(label, nullptr, area.left, area.top, area.right - area.left, area.bottom - area.top,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
    SetWindowTextW(label, toWide(text).c_str());
  }

  // At once, because the next question to the register may take long.
  void paintNow() const { RedrawWindow(window(), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN); }

  void draw(HDC dc, RECT client) const override { FillRect(dc, &client, GetSysColorBrush(COLOR_BTNFACE)); }

  WaitText text_;
  std::function<bool(WaitView&)> tick_;
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

void runWaitDialog(const WaitText& text, const std::function<bool(WaitView&)>& tick) {
  const std::exception_ptr failure = std::make_unique<WaitDialog>(text, SW_SHOW)->run(tick);
  if (failure != nullptr) std::rethrow_exception(failure);
}

std::unique_ptr<WaitView> showWaitWindow(const WaitText& text) {
  return std::make_unique<WaitDialog>(text, SW_SHOWNOACTIVATE);
}

}  // namespace mirvane::platform
