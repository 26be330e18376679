#pragma once

#include <cstdint>
#include <string>

#include "protocol/words.h"
#include "state/service.h"

namespace mirvane {

/// How a command is sent.
struct Sending {
  /// Seconds that the device may take before a serial exchange is repeated.
  std::int16_t timeOut = 0;
  /// Whether the box about characters that the device does not know stays away.
  bool silent = true;
  Word word{};
};

/// What one exchange brought in: the bytes that came, control bytes included, or why there are none.
struct Exchange {
  std::int16_t failure = 0;  ///< a link_result; 0 when `received` is what the device sent, be it nothing
  TextView text{};           ///< of the failure
  std::string received{};
  int attempts = 1;  ///< how often the frame went out, or should have
};

/// Looks on while a device does not answer.
class SilenceObserver {
 public:
  virtual ~SilenceObserver() = default;

  /// Told before each repetition of a serial exchange, and when its line has failed.
  virtual void fallsSilent() {}
  /// Told every few milliseconds while something is waited for, behind a look at the line.
  virtual void waits() { serveWindows(); }
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

  /// Carries one frame to the device and takes what comes back, with the handshake of the line but for the
  /// acknowledgement. A serial exchange is repeated, without end, once the time-out has passed; a network exchange ends
  /// by itself.
  virtual Exchange exchange(const std::string& frame, const Sending& sending, SilenceObserver& silence) = 0;
  /// One attempt at it, of so many seconds at most; kNoAnswer when nothing came.
  virtual Exchange attempt(const std::string& frame, double seconds) = 0;
  /// Tells the device that its answer has arrived. One that is not told may tell the answer again when it is asked
  /// again.
  virtual void acknowledge() = 0;

  /// Whether an acknowledgement can get lost on the way, and nobody is told.
  virtual bool losesSilently() const = 0;

  /// A line of the debug trace, which shows the serial line alone.
  virtual void trace(TextView label, TextView text = {}) = 0;

 protected:
  virtual bool hasUnread() = 0;
  /// Takes what is waiting, as `read`, for nobody.
  virtual void drop() = 0;
};

}  // namespace mirvane
