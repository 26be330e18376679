#include "platform/windows/datagram_sockets.h"
#include "platform/windows/serial_port.h"
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

  void sleep(std::uint32_t milliseconds) override { Sleep(milliseconds); }

 private:
  static SYSTEMTIME local() {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return now;
  }
};

class WindowsScreen : public Screen {
 public:
  void messageBox(TextView prompt, std::uint32_t style, TextView title) override {
    // Owned by the program's active window, which cannot be used while the box is open: a second call inside the first
    // would talk between its lines.
    MessageBoxW(GetActiveWindow(), toWide(prompt).c_str(), toWide(title).c_str(), style);
  }

  DeviceOutcome waitForDevice(std::int16_t code, TextView message) override { return {code, Text(message)}; }

  void traceLine(TextView line) override { OutputDebugStringW((toWide(line) + L"\n").c_str()); }
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

}  // namespace mirvane::platform
