#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "emulator/line.h"

namespace boost::asio {
class io_context;
}

// How other programs reach the register. Everything runs in the loop of one `io_context`, on one thread.
namespace mirvane::emulator {

/// A transport cannot be opened, or has disappeared. The text says which and why.
struct TransportError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// What a transport connects to.
struct Wiring {
  boost::asio::io_context& loop;
  bool isPaced;
  /// Creates the register's end of the link, which answers through the outlet.
  std::function<std::unique_ptr<Receiver>(Outlet&)> connect;
};

/// One way to the register. If it disappears without being unplugged, the loop throws TransportError.
class Transport {
 public:
  virtual ~Transport() = default;

  /// As in the "ready" line: "pty=/dev/pts/5".
  virtual std::string address() const = 0;
};

// Each throws TransportError if it cannot be opened.

/// A pseudo-terminal in raw mode, with a symbolic link to it at `link` unless that is empty. Without a link it comes
/// back under whatever name the system gives it. Not on Windows.
std::unique_ptr<Transport> openPty(const std::string& link, const Wiring& wiring);
/// A serial port: 115200 bits per second, 8 data bits, no parity, 1 stop bit.
std::unique_ptr<Transport> openSerial(const std::string& path, const Wiring& wiring);
/// `address` is "PORT" (on 127.0.0.1) or "ADDRESS:PORT"; port 0 lets the system choose. Each datagram's sender gets the
/// answers to it. Throws std::invalid_argument if the text is not such an address.
std::unique_ptr<Transport> openUdp(const std::string& address, const Wiring& wiring);

}  // namespace mirvane::emulator
