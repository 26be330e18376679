#pragma once

#include <chrono>
#include <csignal>
#include <deque>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "emulator/line.h"

// How the device is reached from other programs. POSIX only.
namespace mirvane::emulator {

/// A transport cannot be opened, or has gone. The text tells which and why.
struct TransportError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Bytes on their way out, each with the moment it may leave. When paced, bytes need the time that a line of
/// wire::kBaud gives them: the last byte of a piece is handed over when it would have crossed the wire, and a reply
/// starts after the command's bytes would have.
class Outbox : public Outlet {
 public:
  using Time = std::chrono::steady_clock::time_point;

  explicit Outbox(bool isPaced) : isPaced_(isPaced) {}

  void send(std::string_view bytes, std::uint32_t delay) override;
  void sendCopy(std::string_view bytes, std::uint32_t delay) override;
  void drop() override;
  /// Counts `count` bytes that have arrived.
  void received(std::size_t count);

  bool empty() const { return pieces_.empty(); }
  /// When the next bytes are due. The box is not empty.
  Time due() const { return pieces_.front().due; }
  std::string_view bytes() const { return pieces_.front().bytes; }
  /// Takes the first `count` of `bytes` out; all of them end the piece.
  void sent(std::size_t count);

 private:
  struct Piece {
    Time due;
    std::string bytes;
    bool isCopy;
  };

  void add(Piece piece);

  const bool isPaced_;
  std::deque<Piece> pieces_;
  /// When the wire has carried everything that came in, and everything that was sent.
  Time inputEnd_{};
  Time outputEnd_{};
};

/// One way to the device, served by `serve`. Opening and serving throw TransportError.
class Transport {
 public:
  virtual ~Transport() = default;

  /// As in the ready line: "pty=/dev/pts/5".
  virtual std::string address() const = 0;
  virtual int descriptor() const = 0;
  virtual void receive() = 0;
  /// Sends what is due. False when the system takes no more for now.
  virtual bool flush() = 0;
  virtual const Outbox& outbox() const = 0;
};

/// A pseudo-terminal in raw mode, with a symbolic link to it at `link` unless that is empty.
std::unique_ptr<Transport> openPty(const std::string& link, Device& device, Faults& faults, bool isPaced);
/// A real line: 115200 bits per second, 8 data bits, no parity, 1 stop bit.
std::unique_ptr<Transport> openSerial(const std::string& path, Device& device, Faults& faults, bool isPaced);
/// `address` is "PORT" (on 127.0.0.1) or "ADDRESS:PORT"; port 0 lets the system choose. Replies go to the sender of
/// the latest datagram. Throws std::runtime_error for a text that is no such address.
std::unique_ptr<Transport> openUdp(const std::string& address, Device& device, Faults& faults, bool isPaced,
                                   Line::Acknowledges acknowledges);

/// Serves `transports` until `stop` is set by a signal that `mask` lets through only while waiting.
void serve(const std::vector<std::unique_ptr<Transport>>& transports, const volatile std::sig_atomic_t& stop,
           const sigset_t& mask);

}  // namespace mirvane::emulator
