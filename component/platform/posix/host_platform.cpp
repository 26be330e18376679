#include "platform/posix/host_platform.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <system_error>
#include <thread>

#include "platform/posix/datagram_sockets.h"
#include "platform/posix/serial_line.h"
#include "text/code_page.h"

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
  std::int64_t sinceEpoch() override {
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
  }
  int zoneAt(std::int64_t sinceEpoch) override {
    const auto moment = static_cast<std::time_t>(sinceEpoch / 1000);
    std::tm local{};
    localtime_r(&moment, &local);
    return static_cast<int>(local.tm_gmtoff / 60);
  }
  void sleep(std::uint32_t milliseconds) override {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  }
};

// "c:\\folder" becomes the folder "c:/folder" in the current one.
std::string localPath(TextView path) {
  std::string name = toUtf8(path);
  std::replace(name.begin(), name.end(), '\\', '/');
  return name;
}

// One line of progress, overwritten again and again.
class TerminalJournal : public JournalView {
 public:
  ~TerminalJournal() override {
    if (!line_.empty()) std::cerr << std::endl;
  }
  void beginFile(TextView name) override { file_ = toUtf8(name); }
  void append(TextView /*piece*/, std::size_t count) override {
    const std::size_t width = line_.size();
    line_ = file_ + "  " + std::to_string(count);
    std::cerr << '\r' << line_ << std::string(width - std::min(width, line_.size()), ' ') << std::flush;
  }
  void processEvents() override {}

 private:
  std::string file_;
  std::string line_;
};

// A line for each text that differs from the one before.
class TerminalWait : public WaitView {
 public:
  void show(const WaitText& text) override {
    Text line = text.caption + u": " + text.state + u" " + text.message;
    if (line == shown_) return;
    std::cerr << toUtf8(line) << std::endl;
    shown_ = std::move(line);
  }
  void repaint() override {}

 private:
  Text shown_;
};

// On a terminal a message box is a line.
class TerminalScreen : public Screen {
 public:
  void messageBox(TextView prompt, std::uint32_t /*style*/, TextView title) override {
    std::cerr << toUtf8(title) << ": " << toUtf8(prompt) << std::endl;
  }
  void waitWhile(const WaitText& text, const std::function<bool(WaitView&)>& tick) override {
    TerminalWait line;
    line.show(text);
    do std::this_thread::sleep_for(std::chrono::seconds(1));
    while (tick(line));
  }
  std::unique_ptr<WaitView> showWait(const WaitText& text) override {
    auto line = std::make_unique<TerminalWait>();
    line->show(text);
    return line;
  }
  std::unique_ptr<JournalView> showJournal() override { return std::make_unique<TerminalJournal>(); }
  void serveWindows() override {}
  void showTrace(bool /*shown*/) override {}
  void traceLine(TextView line) override {
    if (traceSink()) traceSink()(line);
  }
};

// Returns how many bytes were written.
std::size_t writeAll(int file, std::string_view bytes) {
  std::size_t written = 0;
  while (written < bytes.size()) {
    const auto count = write(file, bytes.data() + written, bytes.size() - written);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    written += static_cast<std::size_t>(count);
  }
  return written;
}

// Locks the file until it is closed; false if any other program has locked it.
bool lock(int file) { return flock(file, LOCK_EX | LOCK_NB) == 0; }

class PosixGrowingFile : public GrowingFile {
 public:
  explicit PosixGrowingFile(int file) : file_(file) {}
  PosixGrowingFile(const PosixGrowingFile&) = delete;
  PosixGrowingFile& operator=(const PosixGrowingFile&) = delete;
  ~PosixGrowingFile() override { close(file_); }
  std::uint64_t size() override { return static_cast<std::uint64_t>(lseek(file_, 0, SEEK_END)); }
  std::size_t append(std::string_view bytes) override { return writeAll(file_, bytes); }

 private:
  int file_;
};

class PosixFiles : public Files {
 public:
  Text componentFolder() override {
    std::error_code error;
    return fromUtf8(std::filesystem::read_symlink("/proc/self/exe", error).parent_path().string());
  }
  std::optional<std::string> read(TextView path) override {
    std::ifstream file(localPath(path), std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(file), {}};
    if (!file) return std::nullopt;
    return content;
  }
  bool makeFolder(TextView folder) override {
    std::error_code error;
    std::filesystem::create_directories(localPath(folder), error);
    return std::filesystem::is_directory(localPath(folder), error);
  }
  bool replace(TextView path, std::string_view bytes) override {
    const std::string name = localPath(path);
    const std::string temporary = name + ".tmp";
    if (writeToDisk(temporary, bytes) && std::rename(temporary.c_str(), name.c_str()) == 0) return true;
    std::remove(temporary.c_str());
    return false;
  }

  bool isFolder(TextView folder) override {
    std::error_code error;
    return std::filesystem::is_directory(localPath(folder), error);
  }
  std::vector<Text> fileNames(TextView folder) override {
    std::vector<Text> names;
    std::error_code error;
    std::filesystem::directory_iterator at(localPath(folder), error);
    for (; !error && at != end(at); at.increment(error)) names.push_back(fromUtf8(at->path().filename().string()));
    return names;
  }
  std::optional<std::uint64_t> fileSize(TextView path) override {
    std::error_code error;
    const auto size = std::filesystem::file_size(localPath(path), error);
    return error ? std::nullopt : std::optional<std::uint64_t>(size);
  }
  std::unique_ptr<GrowingFile> grow(TextView path) override {
    const int file = open(localPath(path).c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (file < 0) return nullptr;
    auto growing = std::make_unique<PosixGrowingFile>(file);
    if (!lock(file)) return nullptr;
    return growing;
  }
  void remove(TextView path) override {
    const int file = open(localPath(path).c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return;
    if (lock(file)) unlink(localPath(path).c_str());
    close(file);
  }

 private:
  static bool writeToDisk(const std::string& name, std::string_view bytes) {
    const int file = open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file < 0) return false;
    const bool onDisk = writeAll(file, bytes) == bytes.size() && fsync(file) == 0;
    return close(file) == 0 && onDisk;
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

Process hostProcess() {
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  return {getpid(), fromUtf8(program.filename().string())};
}

}  // namespace mirvane::platform
