#include "platform/windows/message_box.h"

#include <memory>
#include <utility>

#include "platform/windows/floating_point.h"
#include "platform/windows/window.h"

namespace mirvane::platform {
namespace {

// A service has its own window station, without a screen.
bool isVisible() {
  USEROBJECTFLAGS station{};
  return GetUserObjectInformationW(GetProcessWindowStation(), UOI_FLAGS, &station, sizeof station, nullptr) == FALSE ||
         (station.dwFlags & WSF_VISIBLE) != 0;
}

// Keeps the program's windows from input while a message box is shown. The box itself disables and re-enables its
// owner; when it closes, before the focus returns, the other windows are enabled again.
class BoxLock final : public DuringCall {
 public:
  explicit BoxLock(HWND owner) : owner_(owner), lock_(owner), outer_(std::exchange(innermost, this)) {
    hook_ = SetWindowsHookExW(WH_CALLWNDPROC, &BoxLock::watch, nullptr, GetCurrentThreadId());
  }
  BoxLock(const BoxLock&) = delete;
  BoxLock& operator=(const BoxLock&) = delete;
  ~BoxLock() override {
    UnhookWindowsHookEx(hook_);
    innermost = outer_;
    // The box has closed, unless the program has left the call.
    if (IsWindow(box_) == FALSE) return;
    EndDialog(box_, IDCANCEL);
    DestroyWindow(box_);
  }

 private:
  static LRESULT CALLBACK watch(int code, WPARAM fromHere, LPARAM message) {
    const auto& sent = *reinterpret_cast<const CWPSTRUCT*>(message);
    if (code == HC_ACTION && innermost != nullptr) innermost->see(sent);
    return CallNextHookEx(nullptr, code, fromHere, message);
  }

  void see(const CWPSTRUCT& sent) {
    if (sent.message == WM_INITDIALOG && box_ == nullptr) box_ = sent.hwnd;
    if (sent.message == WM_ENABLE && sent.wParam != FALSE && sent.hwnd == owner_) lock_.release();
  }

  static inline BoxLock* innermost = nullptr;

  HWND owner_;
  InputLock lock_;
  BoxLock* outer_;
  HHOOK hook_ = nullptr;
  HWND box_ = nullptr;
};

}  // namespace

void showMessageBox(const std::wstring& prompt, UINT style, const std::wstring& title) {
  const HostFloatingPoint host;
  if (!isVisible()) {  // and nobody could close the box
    OutputDebugStringW((title + L": " + prompt + L"\n").c_str());
    return;
  }
  const HWND owner = GetActiveWindow();
  const auto lock = std::make_unique<BoxLock>(owner);
  // Nothing else brings a box without an owner to the front.
  MessageBoxW(owner, prompt.c_str(), title.c_str(), owner != nullptr ? style : style | MB_SETFOREGROUND | MB_TOPMOST);
}

}  // namespace mirvane::platform
