#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "emulator/line.h"

namespace boost::asio {
class io_context;
}

// How the device is reached from other programs. All of it runs in the loop of one `io_context`, in one thread.
namespace mirvane::emulator {

/// A transport cannot be opened, or has gone. The text tells which and why.
struct TransportError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// What a transport leads to, and how.
struct Wiring {
  boost::asio::io_context& loop;
  bool isPaced;
  /// Makes the register's end of the link, which answers through the outlet.
  std::function<std::unique_ptr<Receiver>(Outlet&)> connect;
};

/// One way to the device. When it goes without having been unplugged, TransportError comes out of the loop.
class Transport {
 public:
  virtual ~Transport() = default;

  /// As in the ready line: "pty=/dev/pts/5".
  virtual std::string address() const = 0;
};

// Each throws TransportError when it cannot be opened.

/// A pseudo-terminal in raw mode, with a symbolic link to it at `link` unless that is empty: without one it comes back
/// under whatever name the system gives it. Not on Windows.
std::unique_ptr<Transport> openPty(const std::string& link, const Wiring& wiring);
/// A real line: 115200 bits per second, 8 data bits, no parity, 1 stop bit.
std::unique_ptr<Transport> openSerial(const std::string& path, const Wiring& wiring);
/// `address` is "PORT" (on 127.0.0.1) or "ADDRESS:PORT"; port 0 lets the system choose. Each datagram's
/// sender gets its answers. Throws std::invalid_argument for a text that is no such address.
std::unique_ptr<Transport> openUdp(const std::string& address, const Wiring& wiring);

}  // namespace mirvane::emulator
