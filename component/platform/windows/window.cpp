#include "platform/windows/window.h"

#include <utility>

#include "platform/windows/floating_point.h"

namespace mirvane::platform {
namespace {

constexpr int kUsualDpi = 96;
constexpr UINT kDpiChanged = 0x02E0;

// A window that keeps getting messages must not hold the call up.
constexpr int kMostMessages = 1000;

UINT dpiOf(HWND window) {
  // Older systems lack the call and use one resolution for all monitors.
  using GetDpi = UINT(WINAPI*)(HWND);
  const auto getDpi =
      reinterpret_cast<GetDpi>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32"), "GetDpiForWindow")));
  if (getDpi != nullptr) return getDpi(window);
  const HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(nullptr, screen);
  return static_cast<UINT>(dpi);
}

// Fetches one message with a number between `first` and `last` (0 and 0 for any) of these `kinds`. Each look also
// serves what other threads have sent, and shows the system that the program is alive. A request to end the program is
// returned whatever is looked for; it belongs to the program's own loop.
bool nextMessage(MSG& message, UINT first, UINT last, UINT kinds) {
  if (PeekMessageW(&message, nullptr, first, last, PM_REMOVE | kinds) == FALSE) return false;
  if (message.message != WM_QUIT) return true;
  PostQuitMessage(static_cast<int>(message.wParam));
  return false;
}

// From the oldest to the newest.
std::vector<DuringCall*>& all() {
  static auto& things = *new std::vector<DuringCall*>;
  return things;
}

}  // namespace

Window::~Window() {
  if (window_ != nullptr) DestroyWindow(window_);
}

RECT Window::make(const Look& look, HWND owner) {
  MONITORINFO monitor{};
  monitor.cbSize = sizeof monitor;
  GetMonitorInfoW(MonitorFromWindow(owner, MONITOR_DEFAULTTOPRIMARY), &monitor);
  const RECT& area = monitor.rcWork;

  WNDCLASSEXW description{};
  description.cbSize = sizeof description;
  description.style = look.classStyle;
  description.lpfnWndProc = &Window::procedure;
  description.hInstance = ownModule();
  description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  description.lpszClassName = look.className;

  RegisterClassExW(&description);  // fails from the second window on: the class stays registered
  // Created on its monitor, which decides the resolution; only then can its size be calculated.
  CreateWindowExW(look.extendedStyle, look.className, look.title, look.style, area.left, area.top, 1, 1, owner, nullptr,
                  ownModule(), this);
  dpi_ = window_ != nullptr ? dpiOf(window_) : kUsualDpi;
  resolutionChanged();
  return area;
}

int Window::scaled(int length) const { return MulDiv(length, static_cast<int>(dpi_), kUsualDpi); }

Font Window::font(const wchar_t* name, int points, DWORD family) const {
  constexpr int kPointsPerInch = 72;
  // The character set makes sure that the substitute for a missing font has Greek letters.
  return Font(CreateFontW(-MulDiv(points, static_cast<int>(dpi_), kPointsPerInch), 0, 0, 0, FW_NORMAL, FALSE, FALSE,
                          FALSE, GREEK_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY, family,
                          name));
}

void Window::draw(HDC /*dc*/, RECT /*client*/) const {}

LRESULT Window::handle(UINT message, WPARAM first, LPARAM second) {
  switch (message) {
    case WM_PAINT:
      paint();
      return 0;
    case WM_ERASEBKGND:  // the picture covers everything
      return 1;
    case WM_CLOSE:  // only the component closes it
      return 0;
    case kDpiChanged: {
      const auto* place = reinterpret_cast<const RECT*>(second);
      dpi_ = LOWORD(first);
      resolutionChanged();
      SetWindowPos(window_, nullptr, place->left, place->top, place->right - place->left, place->bottom - place->top,
                   SWP_NOZORDER | SWP_NOACTIVATE);
      return 0;
    }
    default:
      return DefWindowProcW(window_, message, first, second);
  }
}

LRESULT CALLBACK Window::procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message == WM_NCCREATE) {
    auto* self = static_cast<Window*>(reinterpret_cast<CREATESTRUCTW*>(second)->lpCreateParams);
    self->window_ = window;
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
  }
  auto* self = reinterpret_cast<Window*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (self == nullptr) return DefWindowProcW(window, message, first, second);
  const LRESULT result = self->handle(message, first, second);
  if (message == WM_DESTROY) {  // the program may close all its windows when it ends
    SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    self->window_ = nullptr;
  }
  return result;
}

// Drawn off-screen and copied at once, to avoid flicker.
void Window::paint() const {
  PAINTSTRUCT damage;
  const HDC screen = BeginPaint(window_, &damage);
  RECT client;
  GetClientRect(window_, &client);
  const HDC dc = CreateCompatibleDC(screen);
  const HBITMAP picture = CreateCompatibleBitmap(screen, client.right, client.bottom);
  const HGDIOBJ before = SelectObject(dc, picture);
  draw(dc, client);
  BitBlt(screen, 0, 0, client.right, client.bottom, dc, 0, 0, SRCCOPY);
  SelectObject(dc, before);
  DeleteObject(picture);
  DeleteDC(dc);
  EndPaint(window_, &damage);
}

DuringCall::DuringCall() { all().push_back(this); }

DuringCall::~DuringCall() { std::erase(all(), this); }

std::size_t DuringCall::count() { return all().size(); }

void DuringCall::endFrom(std::size_t kept) {
  while (all().size() > kept) delete all().back();
}

void DuringCall::forget() { all().clear(); }

InputLock::InputLock(HWND spared)
    : spared_(spared), active_(GetActiveWindow()), focus_(GetFocus() != nullptr ? GetFocus() : active_) {
  EnumThreadWindows(GetCurrentThreadId(), &InputLock::disable, reinterpret_cast<LPARAM>(this));
}

void InputLock::release(HWND own) {
  const HostFloatingPoint host;
  for (const HWND window : std::exchange(windows_, {})) EnableWindow(window, TRUE);
  const HWND active = GetActiveWindow();
  const bool isWithOwn = own != nullptr && active == own;
  const bool isLost = active == active_ && GetFocus() == nullptr;
  if (isWithOwn || isLost) SetFocus(focus_);
}

BOOL CALLBACK InputLock::disable(HWND window, LPARAM self) {
  auto* const lock = reinterpret_cast<InputLock*>(self);
  if (window != lock->spared_ && IsWindowVisible(window) != FALSE && EnableWindow(window, FALSE) == FALSE) {
    lock->windows_.push_back(window);
  }
  return TRUE;
}

PendingMessages::~PendingMessages() {
  if (quit_) PostQuitMessage(*quit_);
}

void PendingMessages::dispatch() {
  const HostFloatingPoint host;
  MSG message;
  for (int i = 0; i < kMostMessages && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE; ++i) {
    if (message.message == WM_QUIT) {
      quit_ = static_cast<int>(message.wParam);
      continue;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

// A window that invalidates itself in its own paint handler would never finish.
void PendingMessages::serve() {
  constexpr ULONGLONG kLongest = 50;
  const HostFloatingPoint host;
  const ULONGLONG end = GetTickCount64() + kLongest;
  MSG message;
  while (nextMessage(message, WM_PAINT, WM_PAINT, 0)) {
    DispatchMessageW(&message);
    if (GetTickCount64() >= end) return;
  }
}

void PendingMessages::repaint() {
  {
    const HostFloatingPoint host;
    MSG message;
    for (int i = 0; i < kMostMessages && nextMessage(message, 0, 0, PM_QS_INPUT); ++i) {
    }
  }
  serve();
}

}  // namespace mirvane::platform
