#include "platform/posix/host_platform.h"

#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <thread>

#include "platform/posix/datagram_sockets.h"
#include "platform/posix/serial_line.h"

namespace mirvane::platform {
namespace {

std::function<void(TextView)>& traceSink() {
  static std::function<void(TextView)> sink;
  return sink;
}

LocalTime localAt(std::time_t moment) {
  std::tm local{};
  localtime_r(&moment, &local);
  return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

class PosixClock : public Clock {
 public:
  double secondsSinceMidnight() override {
    const auto now = std::chrono::system_clock::now();
    const LocalTime time = localAt(std::chrono::system_clock::to_time_t(now));
    const double fraction = std::chrono::duration<double>(now.time_since_epoch() % std::chrono::seconds(1)).count();
    return time.hour * 3600.0 + time.minute * 60.0 + time.second + fraction;
  }
  double elapsed() override {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
  }
  LocalTime localTime() override { return localAt(std::time(nullptr)); }
  void sleep(std::uint32_t milliseconds) override {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  }
};

// A terminal: what would be a box is a line.
class TerminalScreen : public Screen {
 public:
  void messageBox(TextView prompt, std::uint32_t /*style*/, TextView title) override {
    std::cerr << toUtf8(title) << ": " << toUtf8(prompt) << std::endl;
  }
  DeviceOutcome waitForDevice(std::int16_t code, TextView message) override { return {code, Text(message)}; }
  void traceLine(TextView line) override {
    if (traceSink()) traceSink()(line);
  }
};

class PosixFiles : public Files {
 public:
  Text componentFolder() override {
    std::error_code error;
    return fromUtf8(std::filesystem::read_symlink("/proc/self/exe", error).parent_path().string());
  }
  std::optional<std::string> read(TextView path) override {
    std::string name = toUtf8(path);
    for (char& c : name) {
      if (c == '\\') c = '/';
    }
    std::ifstream file(name, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(file), {}};
    if (!file) return std::nullopt;
    return content;
  }
};

}  // namespace

void setTraceSink(std::function<void(TextView)> sink) { traceSink() = std::move(sink); }

Platform& hostPlatform() {
  static PosixSerialPort serial;
  static PosixDatagramSockets sockets;
  static PosixClock clock;
  static TerminalScreen screen;
  static PosixFiles files;
  static Platform platform{serial, sockets, clock, screen, files};
  return platform;
}

}  // namespace mirvane::platform
