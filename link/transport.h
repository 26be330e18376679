#pragma once

#include <cstdint>
#include <string>

#include "text/code_page.h"

namespace mirvane {

/// What one exchange brought in: the bytes that came, control bytes included, or why there are none.
struct Exchange {
  std::int16_t failure = 0;  ///< a link_result; 0 when `received` is what the device sent, be it nothing
  TextView text;             ///< of the failure
  std::string received;
};

/// Looks on while a serial device does not answer.
class SilenceObserver {
 public:
  virtual ~SilenceObserver() = default;

  /// Told before each repetition of the exchange.
  virtual void repeats() {}
  /// Told every few milliseconds from the first repetition on, until the device answers.
  virtual void waits() {}
};

/// A way to the device. Nothing above the link asks which one it is.
class Transport {
 public:
  virtual ~Transport() = default;

  /// Sends the bytes as they are; whether anything was sent.
  virtual bool write(std::string_view bytes) = 0;
  /// What is waiting, one datagram or one read of the line; empty when nothing is, and after an error.
  virtual std::string read() = 0;
  /// Whether a datagram is waiting; a serial line cannot tell.
  virtual bool hasDatagram() = 0;
  /// Drops unread input, for a second at most.
  void drain();

  /// Carries one frame to the device and takes what comes back, with the handshake of the line. A serial exchange is
  /// repeated, without end, once `timeOut` seconds have passed, and `silence` is told; a network exchange ends by
  /// itself.
  virtual Exchange exchange(const std::string& frame, std::int16_t timeOut, SilenceObserver& silence) = 0;

  /// A line of the debug trace, which shows the serial line alone.
  virtual void trace(TextView label, TextView text = {}) = 0;

 protected:
  virtual bool hasUnread() = 0;
  /// Takes what is waiting, as `read`, for nobody.
  virtual void drop() = 0;
};

}  // namespace mirvane
