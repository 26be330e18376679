#include "platform/windows/journal_window.h"

#include <algorithm>
#include <deque>
#include <vector>

#include "platform/windows/window.h"

namespace mirvane::platform {
namespace {

// Lengths for 96 dots per inch.
constexpr int kJournalWidth = 620;
constexpr int kJournalHeight = 420;
constexpr int kMargin = 10;

// A journal can have millions of lines: only the newest are kept, more than the largest screen shows.
constexpr std::size_t kMostLines = 300;
constexpr std::size_t kLongestLine = 4096;

// A few updates per second show that work continues. The line is idle while one is drawn.
constexpr ULONGLONG kPictureTime = 400;

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

  // The last rows for this many columns, with longer lines folded; in order.
  std::vector<std::wstring_view> rows(std::size_t count, std::size_t columns) const {
    std::vector<std::wstring_view> newestFirst;
    // Text after the last line end is not a complete line.
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

class JournalWindow final : public JournalView, private Window, private DuringCall {
 public:
  JournalWindow() : owner_(GetActiveWindow()) {
    const RECT area = make({L"MirvaneJournal", L"Ηλεκτρονικό Ημερολόγιο", CS_HREDRAW | CS_VREDRAW | CS_NOCLOSE,
                            WS_POPUP | WS_CAPTION | WS_THICKFRAME, WS_EX_DLGMODALFRAME},
                           owner_);
    if (window() == nullptr) return;
    const int width = std::min<int>(scaled(kJournalWidth), area.right - area.left);
    const int height = std::min<int>(scaled(kJournalHeight), area.bottom - area.top);
    SetWindowPos(window(), nullptr, (area.left + area.right - width) / 2, (area.top + area.bottom - height) / 2, width,
                 height, SWP_NOZORDER | SWP_NOACTIVATE);
    ShowWindow(window(), SW_SHOW);
    UpdateWindow(window());
  }
  JournalWindow(const JournalWindow&) = delete;
  JournalWindow& operator=(const JournalWindow&) = delete;
  ~JournalWindow() override { lock_.release(window()); }

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
    messages_.dispatch();
    if (stale_) showNews();
  }

 private:
  LRESULT handle(UINT message, WPARAM first, LPARAM second) override {
    if (message != WM_GETMINMAXINFO) return Window::handle(message, first, second);
    reinterpret_cast<MINMAXINFO*>(second)->ptMinTrackSize = {scaled(kJournalWidth / 2), scaled(kJournalHeight / 2)};
    return 0;
  }

  void resolutionChanged() override {
    headFont_ = font(L"Segoe UI", 10, VARIABLE_PITCH | FF_SWISS);
    textFont_ = font(L"Courier New", 10, FIXED_PITCH | FF_MODERN);
  }

  // Draws at once if the last update is old enough; otherwise with later text.
  void showNews() {
    const ULONGLONG now = GetTickCount64();
    stale_ = now - pictureAt_ < kPictureTime;
    if (stale_ || window() == nullptr) return;
    pictureAt_ = now;
    InvalidateRect(window(), nullptr, FALSE);
    UpdateWindow(window());
  }

  void draw(HDC dc, RECT client) const override {
    const HGDIOBJ before = SelectObject(dc, headFont_.get());
    FillRect(dc, &client, GetSysColorBrush(COLOR_BTNFACE));
    SetBkMode(dc, TRANSPARENT);
    InflateRect(&client, -scaled(kMargin), -scaled(kMargin));
    client.top += drawHead(dc, client) + scaled(kMargin);

    FillRect(dc, &client, GetSysColorBrush(COLOR_WINDOW));
    DrawEdge(dc, &client, EDGE_SUNKEN, BF_RECT | BF_ADJUST);
    InflateRect(&client, -scaled(kMargin) / 2, -scaled(kMargin) / 2);
    SelectObject(dc, textFont_.get());
    drawText(dc, client);
    SelectObject(dc, before);
  }

  // Draws the file name and, on the right, the count; returns their height.
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
  PendingMessages messages_;
  Font headFont_;
  Font textFont_;

  Tail tail_;
  std::wstring file_;
  std::size_t count_ = 0;
  ULONGLONG pictureAt_ = 0;
  // Whether there is text that is not shown yet.
  bool stale_ = false;
};

}  // namespace

std::unique_ptr<JournalView> showJournalWindow() { return std::make_unique<JournalWindow>(); }

}  // namespace mirvane::platform
