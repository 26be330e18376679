#include "platform/windows/journal_window.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <vector>

#include "platform/windows/windows.h"

namespace mirvane::platform {
namespace {

constexpr const wchar_t* kClassName = L"MirvaneJournal";
constexpr const wchar_t* kTitle = L"Ηλεκτρονικό Ημερολόγιο";

// Lengths in the window are written for this resolution, and scaled.
constexpr int kUsualDpi = 96;
constexpr int kWidth = 620;
constexpr int kHeight = 420;
constexpr int kMargin = 10;

// A journal can have millions of lines: only the newest are kept, more than the largest screen shows.
constexpr std::size_t kMostLines = 300;
constexpr std::size_t kLongestLine = 4096;

// Twenty pictures a second look continuous; more would only slow the transfer.
constexpr ULONGLONG kPictureTime = 50;

// A window that never settles must not hold the transfer up.
constexpr int kMostMessages = 1000;

constexpr UINT kDpiChanged = 0x02E0;

UINT dpiOf(HWND window) {
  // Older systems, which lack the call, give one resolution to all monitors.
  using GetDpi = UINT(WINAPI*)(HWND);
  const auto getDpi =
      reinterpret_cast<GetDpi>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32"), "GetDpiForWindow")));
  if (getDpi != nullptr) return getDpi(window);
  const HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(nullptr, screen);
  return static_cast<UINT>(dpi);
}

Text grouped(std::size_t number) {
  std::string digits = std::to_string(number);
  for (auto i = static_cast<int>(digits.size()) - 3; i > 0; i -= 3) digits.insert(static_cast<std::size_t>(i), 1, '.');
  return {digits.begin(), digits.end()};
}

// The newest lines of a text that arrives in pieces.
class Tail {
 public:
  void append(TextView piece) {
    for (const char16_t c : piece) {
      const bool lineFeed = c == u'\n';
      // A piece can end between the two characters of a line end.
      if (c == u'\r' || (lineFeed && !afterReturn_) || lines_.back().size() == kLongestLine) beginLine();
      afterReturn_ = c == u'\r';
      if (c != u'\r' && !lineFeed) lines_.back() += c < u' ' ? L' ' : static_cast<wchar_t>(c);
    }
  }

  void endLine() {
    if (!lines_.back().empty()) beginLine();
  }

  // The last rows of so many columns, longer lines being folded; from the first to the last.
  std::vector<std::wstring_view> rows(std::size_t count, std::size_t columns) const {
    std::vector<std::wstring_view> newestFirst;
    // What follows the last line end is no line yet.
    for (auto line = lines_.rbegin() + (lines_.back().empty() ? 1 : 0); line != lines_.rend(); ++line) {
      for (std::size_t at = line->empty() ? 0 : (line->size() - 1) / columns * columns;; at -= columns) {
        if (newestFirst.size() == count) return {newestFirst.rbegin(), newestFirst.rend()};
        newestFirst.push_back(std::wstring_view(*line).substr(at, columns));
        if (at == 0) break;
      }
    }
    return {newestFirst.rbegin(), newestFirst.rend()};
  }

 private:
  void beginLine() {
    lines_.emplace_back();
    if (lines_.size() > kMostLines) lines_.pop_front();
  }

  std::deque<std::wstring> lines_{1};
  bool afterReturn_ = false;
};

// No window of the program takes input while this lives: a call started from there would talk between the lines of the
// one that is under way.
class InputLock {
 public:
  InputLock() : focus_(GetFocus() != nullptr ? GetFocus() : GetActiveWindow()) {
    EnumThreadWindows(GetCurrentThreadId(), &InputLock::disable, reinterpret_cast<LPARAM>(this));
  }
  InputLock(const InputLock&) = delete;
  InputLock& operator=(const InputLock&) = delete;
  ~InputLock() { release(false); }

  void release(bool giveFocusBack) {
    for (const HWND window : windows_) EnableWindow(window, TRUE);
    windows_.clear();
    if (giveFocusBack && focus_ != nullptr) SetFocus(focus_);
  }

 private:
  static BOOL CALLBACK disable(HWND window, LPARAM self) {
    if (IsWindowVisible(window) != FALSE && EnableWindow(window, FALSE) == FALSE) {
      reinterpret_cast<InputLock*>(self)->windows_.push_back(window);
    }
    return TRUE;
  }

  HWND focus_;
  std::vector<HWND> windows_;
};

class JournalWindow final : public JournalView {
 public:
  JournalWindow() : owner_(GetActiveWindow()) {
    WNDCLASSEXW description{};
    description.cbSize = sizeof description;
    description.style = CS_HREDRAW | CS_VREDRAW | CS_NOCLOSE;
    description.lpfnWndProc = &JournalWindow::procedure;
    description.hInstance = ownModule();
    description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    description.lpszClassName = kClassName;
    RegisterClassExW(&description);

    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    GetMonitorInfoW(MonitorFromWindow(owner_, MONITOR_DEFAULTTOPRIMARY), &monitor);
    const RECT& area = monitor.rcWork;
    // Made on its monitor, which decides the resolution, and only then given its size.
    CreateWindowExW(WS_EX_DLGMODALFRAME, kClassName, kTitle, WS_POPUP | WS_CAPTION | WS_THICKFRAME, area.left, area.top,
                    1, 1, owner_, nullptr, ownModule(), this);
    if (window_ == nullptr) return;
    setDpi(dpiOf(window_));
    const int width = std::min<int>(scaled(kWidth), area.right - area.left);
    const int height = std::min<int>(scaled(kHeight), area.bottom - area.top);
    SetWindowPos(window_, nullptr, (area.left + area.right - width) / 2, (area.top + area.bottom - height) / 2, width,
                 height, SWP_NOZORDER | SWP_NOACTIVATE);
    ShowWindow(window_, SW_SHOW);
    UpdateWindow(window_);
  }
  JournalWindow(const JournalWindow&) = delete;
  JournalWindow& operator=(const JournalWindow&) = delete;

  ~JournalWindow() override {
    // First of all, or the system would look for another program to bring to the front.
    lock_.release(window_ != nullptr && GetActiveWindow() == window_);
    if (window_ != nullptr) DestroyWindow(window_);
    // It would point into a DLL that may be unloaded. While another window of the class is open it stays.
    UnregisterClassW(kClassName, ownModule());
    deleteFonts();
    if (quit_) PostQuitMessage(*quit_);
  }

  void beginFile(TextView name) override {
    file_ = toWide(name);
    tail_.endLine();
    showNews();
  }

  void append(TextView piece, std::size_t count) override {
    tail_.append(piece);
    count_ = count;
    showNews();
  }

  void processEvents() override {
    MSG message;
    for (int i = 0; i < kMostMessages && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE; ++i) {
      if (message.message == WM_QUIT) {
        // For the program's own loop, when it runs again.
        quit_ = static_cast<int>(message.wParam);
        continue;
      }
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
    if (stale_) showNews();
  }

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (message == WM_NCCREATE) {
      auto* self = static_cast<JournalWindow*>(reinterpret_cast<CREATESTRUCTW*>(second)->lpCreateParams);
      self->window_ = window;
      SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    }
    auto* self = reinterpret_cast<JournalWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self == nullptr) return DefWindowProcW(window, message, first, second);
    switch (message) {
      case WM_PAINT:
        self->paint();
        return 0;
      case WM_ERASEBKGND:  // the picture covers everything
        return 1;
      case WM_CLOSE:  // only the end of the transfer closes it
        return 0;
      case WM_DESTROY:  // the program may close all its windows when it ends
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        self->window_ = nullptr;
        return 0;
      case WM_GETMINMAXINFO:
        reinterpret_cast<MINMAXINFO*>(second)->ptMinTrackSize = {self->scaled(kWidth / 2), self->scaled(kHeight / 2)};
        return 0;
      case kDpiChanged: {
        const auto* place = reinterpret_cast<const RECT*>(second);
        self->setDpi(LOWORD(first));
        SetWindowPos(window, nullptr, place->left, place->top, place->right - place->left, place->bottom - place->top,
                     SWP_NOZORDER | SWP_NOACTIVATE);
        return 0;
      }
      default:
        return DefWindowProcW(window, message, first, second);
    }
  }

  int scaled(int length) const { return MulDiv(length, static_cast<int>(dpi_), kUsualDpi); }

  void setDpi(UINT dpi) {
    dpi_ = dpi;
    deleteFonts();
    // The character set makes sure that whatever stands in for a missing font knows Greek.
    const auto font = [this](const wchar_t* name, int points, DWORD family) {
      constexpr int kPointsPerInch = 72;
      return CreateFontW(-MulDiv(points, static_cast<int>(dpi_), kPointsPerInch), 0, 0, 0, FW_NORMAL, FALSE, FALSE,
                         FALSE, GREEK_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY, family,
                         name);
    };
    headFont_ = font(L"Segoe UI", 10, VARIABLE_PITCH | FF_SWISS);
    textFont_ = font(L"Courier New", 10, FIXED_PITCH | FF_MODERN);
  }

  void deleteFonts() {
    if (headFont_ != nullptr) DeleteObject(headFont_);
    if (textFont_ != nullptr) DeleteObject(textFont_);
    headFont_ = textFont_ = nullptr;
  }

  // At once when the last picture is old enough, else with what comes later.
  void showNews() {
    const ULONGLONG now = GetTickCount64();
    stale_ = now - pictureAt_ < kPictureTime;
    if (stale_ || window_ == nullptr) return;
    pictureAt_ = now;
    InvalidateRect(window_, nullptr, FALSE);
    UpdateWindow(window_);
  }

  // Drawn aside and shown at once, so that it does not flicker.
  void paint() const {
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

  void draw(HDC dc, RECT client) const {
    const HGDIOBJ before = SelectObject(dc, headFont_);
    FillRect(dc, &client, GetSysColorBrush(COLOR_BTNFACE));
    SetBkMode(dc, TRANSPARENT);
    InflateRect(&client, -scaled(kMargin), -scaled(kMargin));
    client.top += drawHead(dc, client) + scaled(kMargin);

    FillRect(dc, &client, GetSysColorBrush(COLOR_WINDOW));
    DrawEdge(dc, &client, EDGE_SUNKEN, BF_RECT | BF_ADJUST);
    InflateRect(&client, -scaled(kMargin) / 2, -scaled(kMargin) / 2);
    SelectObject(dc, textFont_);
    drawText(dc, client);
    SelectObject(dc, before);
  }

  // The file and, on the right, the count; the height that they take.
  int drawHead(HDC dc, RECT area) const {
    SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
    const std::wstring name = file_.empty() ? L"Αναμονή της ταμειακής…" : L"Αρχείο: " + file_;
    const std::wstring count = L"Χαρακτήρες: " + toWide(grouped(count_));
    SIZE size{};
    GetTextExtentPoint32W(dc, count.c_str(), static_cast<int>(count.size()), &size);
    DrawTextW(dc, count.c_str(), -1, &area, DT_RIGHT | DT_SINGLELINE | DT_NOPREFIX);
    area.right -= size.cx + scaled(kMargin);
    DrawTextW(dc, name.c_str(), -1, &area, DT_LEFT | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    return size.cy;
  }

  void drawText(HDC dc, const RECT& area) const {
    TEXTMETRICW font{};
    GetTextMetricsW(dc, &font);
    const LONG rows = (area.bottom - area.top) / std::max(font.tmHeight, 1L);
    const LONG columns = (area.right - area.left) / std::max(font.tmAveCharWidth, 1L);
    if (rows < 1 || columns < 1) return;
    SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
    int y = area.top;
    for (const auto row : tail_.rows(static_cast<std::size_t>(rows), static_cast<std::size_t>(columns))) {
      ExtTextOutW(dc, area.left, y, ETO_CLIPPED, &area, row.data(), static_cast<UINT>(row.size()), nullptr);
      y += font.tmHeight;
    }
  }

  HWND owner_;
  InputLock lock_;
  HWND window_ = nullptr;
  UINT dpi_ = kUsualDpi;
  HFONT headFont_ = nullptr;
  HFONT textFont_ = nullptr;

  Tail tail_;
  std::wstring file_;
  std::size_t count_ = 0;
  ULONGLONG pictureAt_ = 0;
  // Whether there is news that no picture shows yet.
  bool stale_ = false;
  std::optional<int> quit_;
};

}  // namespace

std::unique_ptr<JournalView> showJournalWindow() { return std::make_unique<JournalWindow>(); }

}  // namespace mirvane::platform
