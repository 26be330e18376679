#include "platform/windows/datagram_sockets.h"
#include "platform/windows/floating_point.h"
#include "platform/windows/journal_window.h"
#include "platform/windows/message_box.h"
#include "platform/windows/serial_port.h"
#include "platform/windows/trace_window.h"
#include "platform/windows/wait_dialog.h"
#include "platform/windows/window.h"
#include "platform/windows/windows.h"

namespace mirvane::platform {
namespace {

class WindowsClock : public Clock {
 public:
  double secondsSinceMidnight() override {
    const SYSTEMTIME now = local();
    return now.wHour * 3600 + now.wMinute * 60 + now.wSecond + now.wMilliseconds / 1000.0;
  }

  double elapsed() override {
    LARGE_INTEGER frequency;
    LARGE_INTEGER count;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&count);
    return static_cast<double>(count.QuadPart) / static_cast<double>(frequency.QuadPart);
  }

  LocalTime localTime() override {
    const SYSTEMTIME now = local();
    return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
  }

  // The system counts units of 100 ns since 1601.
  std::int64_t sinceEpoch() override {
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    return (static_cast<std::int64_t>(now.dwHighDateTime) << 32 | now.dwLowDateTime) / kPerMillisecond - kUntil1970;
  }

  int zoneAt(std::int64_t sinceEpoch) override {
    SYSTEMTIME moment{};
    SYSTEMTIME there{};
    FILETIME time = fileTime(sinceEpoch);
    FileTimeToSystemTime(&time, &moment);
    if (SystemTimeToTzSpecificLocalTime(nullptr, &moment, &there) == FALSE) return 0;
    SystemTimeToFileTime(&there, &time);
    const std::int64_t local = static_cast<std::int64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
    constexpr std::int64_t kMinute = 60000;
    return static_cast<int>((local / kPerMillisecond - kUntil1970 - sinceEpoch) / kMinute);
  }

  void sleep(std::uint32_t milliseconds) override { Sleep(milliseconds); }

 private:
  static constexpr std::int64_t kPerMillisecond = 10000;
  static constexpr std::int64_t kUntil1970 = 11644473600000;

  static FILETIME fileTime(std::int64_t sinceEpoch) {
    const auto count = static_cast<std::uint64_t>((sinceEpoch + kUntil1970) * kPerMillisecond);
    return {static_cast<DWORD>(count), static_cast<DWORD>(count >> 32)};
  }

  static SYSTEMTIME local() {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return now;
  }
};

// Writing to the debugger takes tens of microseconds even if there is none. A debugger that watches the whole machine
// is looked for now and then.
bool debuggerListens() {
  constexpr ULONGLONG kLookAgainAfter = 1000;
  static ULONGLONG lookedAt = 0;
  static bool watched = false;
  const ULONGLONG now = GetTickCount64();
  if (lookedAt == 0 || now - lookedAt >= kLookAgainAfter) {
    lookedAt = now;
    const HANDLE reader = OpenEventW(SYNCHRONIZE, FALSE, L"DBWIN_BUFFER_READY");
    watched = reader != nullptr;
    if (watched) CloseHandle(reader);
  }
  return watched || IsDebuggerPresent() != FALSE;
}

// The program's own windows stay alive while one of ours is open.
class WindowsScreen : public Screen {
 public:
  void messageBox(TextView prompt, std::uint32_t style, TextView title) override {
    showMessageBox(toWide(prompt), style, toWide(title));
  }

  void waitWhile(const WaitText& text, const std::function<bool(WaitView&)>& tick) override {
    const HostFloatingPoint host;
    runWaitDialog(text, [&tick](WaitView& view) {
      const OwnFloatingPoint own;
      return tick(view);
    });
  }

  std::unique_ptr<WaitView> showWait(const WaitText& text) override {
    const HostFloatingPoint host;
    return showWaitWindow(text);
  }

  std::unique_ptr<JournalView> showJournal() override {
    const HostFloatingPoint host;
    return showJournalWindow();
  }

  void serveWindows() override { PendingMessages::serve(); }

  void showTrace(bool shown) override { showTraceWindow(shown); }

  void traceLine(TextView line) override {
    if (debuggerListens()) OutputDebugStringW((toWide(line) + L"\n").c_str());
    addToTraceWindow(line);
  }
};

class WindowsGrowingFile : public GrowingFile {
 public:
  explicit WindowsGrowingFile(HANDLE file) : file_(file) {}
  WindowsGrowingFile(const WindowsGrowingFile&) = delete;
  WindowsGrowingFile& operator=(const WindowsGrowingFile&) = delete;
  ~WindowsGrowingFile() override { CloseHandle(file_); }

  std::uint64_t size() override {
    LARGE_INTEGER size{};
    GetFileSizeEx(file_, &size);
    return static_cast<std::uint64_t>(size.QuadPart);
  }

  std::size_t append(std::string_view bytes) override {
    DWORD count = 0;
    WriteFile(file_, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr);
    return count;
  }

 private:
  HANDLE file_;
};

class WindowsFiles : public Files {
 public:
  Text componentFolder() override {
    const std::wstring path = ownPath();
    return fromWide(path.substr(0, path.find_last_of(L'\\')));
  }

  std::optional<std::string> read(TextView path) override {
    const HANDLE file = CreateFileW(toWide(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return std::nullopt;
    constexpr DWORD kPiece = 0x10000;
    std::string bytes;
    DWORD count = kPiece;
    bool good = true;
    while (good && count > 0) {
      const std::size_t before = bytes.size();
      bytes.resize(before + kPiece);
      good = ReadFile(file, bytes.data() + before, kPiece, &count, nullptr) != FALSE;
      bytes.resize(before + (good ? count : 0));
    }
    CloseHandle(file);
    if (!good) return std::nullopt;
    return bytes;
  }

  bool makeFolder(TextView folder) override {
    constexpr const wchar_t* kSeparators = L"\\/";
    const std::wstring path = toWide(folder);
    const std::wstring last = path.substr(0, path.find_last_of(kSeparators) + 1);
    // Failures for the upper levels do not matter: a drive cannot be created, nor an existing folder.
    for (std::size_t end = 0; !isFolder(last) && (end = last.find_first_of(kSeparators, end)) != std::wstring::npos;) {
      CreateDirectoryW(last.substr(0, end++).c_str(), nullptr);
    }
    return isFolder(last);
  }

  bool replace(TextView path, std::string_view bytes) override {
    const std::wstring name = toWide(path);
    const std::wstring temporary = name + L".tmp";
    if (writeToDisk(temporary, bytes) && rename(temporary, name)) return true;
    DeleteFileW(temporary.c_str());
    return false;
  }

  bool isFolder(TextView folder) override { return isFolder(toWide(folder)); }

  std::vector<Text> fileNames(TextView folder) override {
    std::vector<Text> names;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW((toWide(folder) + L"\\*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return names;
    do {
      if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) names.push_back(fromWide(found.cFileName));
    } while (FindNextFileW(search, &found) != FALSE);
    FindClose(search);
    return names;
  }

  // A file that was removed while open keeps its name until it is closed, but has no attributes.
  std::optional<std::uint64_t> fileSize(TextView path) override {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (GetFileAttributesExW(toWide(path).c_str(), GetFileExInfoStandard, &data) == FALSE) return std::nullopt;
    if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return std::nullopt;
    return static_cast<std::uint64_t>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
  }

  std::unique_ptr<GrowingFile> grow(TextView path) override {
    const HANDLE file = CreateFileW(toWide(path).c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                    nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return nullptr;
    return std::make_unique<WindowsGrowingFile>(file);
  }

  // Opened exclusively: a plain removal would take away a file that somebody is writing.
  void remove(TextView path) override {
    const HANDLE file =
        CreateFileW(toWide(path).c_str(), DELETE, 0, nullptr, OPEN_EXISTING, FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
  }

 private:
  static bool isFolder(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  }

  // A virus scanner may hold either file for a moment.
  static bool rename(const std::wstring& from, const std::wstring& to) {
    constexpr int kTries = 10;
    constexpr DWORD kPause = 50;
    for (int tries = 1; tries <= kTries; ++tries) {
      if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE) {
        return true;
      }
      const DWORD error = GetLastError();
      if (error != ERROR_ACCESS_DENIED && error != ERROR_SHARING_VIOLATION) return false;
      Sleep(kPause);
    }
    return false;
  }

  static bool writeToDisk(const std::wstring& name, std::string_view bytes) {
    const HANDLE file =
        CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    DWORD count = 0;
    const bool onDisk = WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) != FALSE &&
                        count == bytes.size() && FlushFileBuffers(file) != FALSE;
    return CloseHandle(file) != FALSE && onDisk;
  }
};

}  // namespace

Platform& hostPlatform() {
  static WindowsSerialPort serial;
  static WindowsDatagramSockets sockets;
  static WindowsClock clock;
  static WindowsScreen screen;
  static WindowsFiles files;
  static Platform platform{serial, sockets, clock, screen, files};
  return platform;
}

SystemError lastError() {
  const DWORD number = GetLastError();
  constexpr DWORD kLongest = 512;
  std::wstring text(kLongest, L'\0');
  text.resize(FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, number, 0,
                             text.data(), kLongest, nullptr));
  text.resize(text.find_last_not_of(L"\r\n ") + 1);
  return {static_cast<std::int32_t>(number), fromWide(text)};
}

Process hostProcess() {
  std::wstring path(MAX_PATH, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
  return {static_cast<std::int32_t>(GetCurrentProcessId()), fromWide(path.substr(path.find_last_of(L'\\') + 1))};
}

}  // namespace mirvane::platform
