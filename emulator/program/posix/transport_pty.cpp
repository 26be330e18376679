#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <boost/asio/posix/stream_descriptor.hpp>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "emulator/program/stream_transport.h"

namespace mirvane::emulator {
namespace {

using Terminal = boost::asio::posix::stream_descriptor;

[[noreturn]] void fail(const std::string& what) { throw TransportError(what + ": " + std::strerror(errno)); }

/// The file that `link` is a symbolic link to; empty when it is none.
std::string linkedPath(const std::string& link) {
  char path[4096];
  const ssize_t size = ::readlink(link.c_str(), path, sizeof path);
  return size < 0 ? "" : std::string(path, static_cast<std::size_t>(size));
}

void makeRaw(int descriptor, const std::string& name) {
  termios settings{};
  if (::tcgetattr(descriptor, &settings) != 0) fail(name);
  ::cfmakeraw(&settings);
  ::cfsetspeed(&settings, B115200);
  settings.c_cflag |= CLOCAL | CREAD;
  settings.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | CRTSCTS);
  if (::tcsetattr(descriptor, TCSANOW, &settings) != 0) fail(name);
}

class Pty : public StreamTransport<Terminal> {
 public:
  Pty(std::string link, const Wiring& wiring) : StreamTransport(wiring), loop_(wiring.loop), link_(std::move(link)) {
    open();
  }
  ~Pty() override { unlinkOurs(); }

 private:
  void open() {
    const int number = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (number < 0) fail("pseudo-terminal");
    Terminal master(loop_, number);
    if (::grantpt(number) != 0 || ::unlockpt(number) != 0) fail("pseudo-terminal");
    path_ = ::ptsname(number);
    const int slave = ::open(path_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (slave < 0) fail(path_);
    slave_.emplace(loop_, slave);
    makeRaw(slave, path_);
    if (!link_.empty()) {
      // A link may be left from a run that was killed; any other file is not ours to remove.
      if (!linkedPath(link_).empty()) ::unlink(link_.c_str());
      if (::symlink(path_.c_str(), link_.c_str()) != 0) fail(link_);
    }
    begin("pty=" + path_, std::move(master));
  }
  void unlinkOurs() const {
    if (linkedPath(link_) == path_) ::unlink(link_.c_str());
  }
  void vanish() override {
    unlinkOurs();
    slave_.reset();
    StreamTransport::vanish();
  }
  void comeBack() override { open(); }

  boost::asio::io_context& loop_;
  const std::string link_;
  std::string path_;
  /// The terminal's own side stays open here too: otherwise the line would end with its first user.
  std::optional<Terminal> slave_;
};

}  // namespace

std::unique_ptr<Transport> openPty(const std::string& link, const Wiring& wiring) {
  return std::make_unique<Pty>(link, wiring);
}

}  // namespace mirvane::emulator
