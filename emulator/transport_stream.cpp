#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "emulator/transport.h"

namespace mirvane::emulator {
namespace {

[[noreturn]] void fail(const std::string& what) { throw TransportError(what + ": " + std::strerror(errno)); }

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const { return number_; }

 private:
  int number_;
};

void makeRaw(int descriptor, const std::string& name) {
  termios settings{};
  if (::tcgetattr(descriptor, &settings) != 0) fail(name);
  ::cfmakeraw(&settings);
  ::cfsetspeed(&settings, B115200);
  settings.c_cflag |= CLOCAL | CREAD;
  settings.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | CRTSCTS);
  if (::tcsetattr(descriptor, TCSANOW, &settings) != 0) fail(name);
}

/// A device file that carries a stream of bytes.
class Stream : public Transport {
 public:
  Stream(int number, std::string name, Device& device, Faults& faults, bool isPaced)
      : name_(std::move(name)),
        descriptor_(number),
        outbox_(isPaced),
        line_(device, faults, outbox_, Line::Acknowledges::kNothing, steadySeconds) {}

  std::string address() const override { return name_; }
  int descriptor() const override { return descriptor_.get(); }
  const Outbox& outbox() const override { return outbox_; }

  void receive() override {
    char buffer[4096];
    const ssize_t count = ::read(descriptor(), buffer, sizeof buffer);
    if (count == 0) throw TransportError(name_ + ": the line is gone");
    if (count < 0 && errno != EAGAIN && errno != EINTR) fail(name_);
    if (count <= 0) return;
    outbox_.received(static_cast<std::size_t>(count));
    line_.feed({buffer, static_cast<std::size_t>(count)});
  }

  bool flush() override {
    while (!outbox_.empty() && outbox_.due() <= std::chrono::steady_clock::now()) {
      const std::string_view bytes = outbox_.bytes();
      const ssize_t count = ::write(descriptor(), bytes.data(), bytes.size());
      if (count < 0 && errno != EAGAIN && errno != EINTR) fail(name_);
      if (count < 0) return false;
      outbox_.sent(static_cast<std::size_t>(count));
    }
    return true;
  }

 private:
  std::string name_;
  Descriptor descriptor_;
  Outbox outbox_;
  Line line_;
};

class Pty : public Stream {
 public:
  /// The emulator keeps the terminal's own side open too: otherwise the line would end with its first user.
  Pty(int master, int slave, const std::string& path, const std::string& link, Device& device, Faults& faults,
      bool isPaced)
      : Stream(master, "pty=" + path, device, faults, isPaced), slave_(slave), path_(path), link_(link) {
    makeRaw(slave, path);
    if (link.empty()) return;
    // One may be left from a run that was ended the hard way; any other file is not ours to remove.
    if (!linkedPath(link).empty()) ::unlink(link.c_str());
    if (::symlink(path.c_str(), link.c_str()) != 0) fail(link);
  }
  ~Pty() override {
    if (linkedPath(link_) == path_) ::unlink(link_.c_str());
  }

 private:
  static std::string linkedPath(const std::string& link) {
    char path[4096];
    const ssize_t size = ::readlink(link.c_str(), path, sizeof path);
    return size < 0 ? "" : std::string(path, static_cast<std::size_t>(size));
  }

  Descriptor slave_;
  const std::string path_, link_;
};

}  // namespace

std::unique_ptr<Transport> openPty(const std::string& link, Device& device, Faults& faults, bool isPaced) {
  const int master = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (master < 0 || ::grantpt(master) != 0 || ::unlockpt(master) != 0) fail("pseudo-terminal");
  const std::string path = ::ptsname(master);
  const int slave = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (slave < 0) fail(path);
  return std::make_unique<Pty>(master, slave, path, link, device, faults, isPaced);
}

std::unique_ptr<Transport> openSerial(const std::string& path, Device& device, Faults& faults, bool isPaced) {
  const int number = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (number < 0) fail(path);
  auto stream = std::make_unique<Stream>(number, "serial=" + path, device, faults, isPaced);
  makeRaw(number, path);
  return stream;
}

}  // namespace mirvane::emulator
