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
  /// The emulator keeps the terminal's own side, `slave`, open too: otherwise the line would end with its first user.
  Pty(Terminal master, Terminal slave, const std::string& path, const std::string& link, const Wiring& wiring)
      : StreamTransport("pty=" + path, std::move(master), wiring), slave_(std::move(slave)), path_(path), link_(link) {
    makeRaw(slave_.native_handle(), path);
    if (link.empty()) return;
    // One may be left from a run that was ended the hard way; any other file is not ours to remove.
    if (!linkedPath(link).empty()) ::unlink(link.c_str());
    if (::symlink(path.c_str(), link.c_str()) != 0) fail(link);
  }
  ~Pty() override {
    if (linkedPath(link_) == path_) ::unlink(link_.c_str());
  }

 private:
  Terminal slave_;
  const std::string path_, link_;
};

}  // namespace

std::unique_ptr<Transport> openPty(const std::string& link, const Wiring& wiring) {
  const int number = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (number < 0) fail("pseudo-terminal");
  Terminal master(wiring.loop, number);
  if (::grantpt(number) != 0 || ::unlockpt(number) != 0) fail("pseudo-terminal");
  const std::string path = ::ptsname(number);
  const int slave = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (slave < 0) fail(path);
  return std::make_unique<Pty>(std::move(master), Terminal(wiring.loop, slave), path, link, wiring);
}

}  // namespace mirvane::emulator
