#pragma once

#include <cstdint>
#include <string>

#include "protocol/words.h"
#include "state/service.h"

namespace mirvane {

/// How a command is sent.
struct Sending {
  /// How many seconds the register may take before a serial exchange is repeated.
  std::int16_t timeOut = 0;
  /// Whether to suppress the message box about characters that the register lacks.
  bool silent = true;
  Word word{};
};

/// The outcome of one exchange: the bytes received, control bytes included, or why there are none.
struct Exchange {
  std::int16_t failure = 0;  ///< a link_result; 0 if `received` is what the register sent, even if that is nothing
  TextView text{};           ///< of the failure
  std::string received{};
  int attempts = 1;  ///< how often the frame was sent, or should have been
};

/// Observes a register that does not answer.
class SilenceObserver {
 public:
  virtual ~SilenceObserver() = default;

  /// Called before each repetition of a serial exchange, and when its line has failed.
  virtual void fallsSilent() {}
  /// Called every few milliseconds during a wait, after each look at the line.
  virtual void waits() { serveWindows(); }
};

/// A connection to the register. Nothing above the link asks which kind it is.
class Transport {
 public:
  virtual ~Transport() = default;

  /// Sends the bytes unchanged; returns whether anything was sent.
  virtual bool write(std::string_view bytes) = 0;
  /// What is waiting: one datagram, or one read of the line. Empty if nothing is, and after an error.
  virtual std::string read() = 0;
  /// Whether a datagram is waiting; a serial line cannot tell.
  virtual bool hasDatagram() = 0;
  /// Drops unread input, for at most a second.
  void drain();

  /// Sends one frame and returns what comes back, with the line's handshake except for the final ACK. A serial exchange
  /// is repeated without end, each time after the time-out; a network exchange ends by itself.
  virtual Exchange exchange(const std::string& frame, const Sending& sending, SilenceObserver& silence) = 0;
  /// A single attempt of at most this many seconds; kNoAnswer if nothing arrives.
  virtual Exchange attempt(const std::string& frame, double seconds) = 0;
  /// Acknowledges the answer. Without this the register may repeat the answer to a repeated question.
  virtual void acknowledge() = 0;

  /// Whether an ACK can be lost unnoticed.
  virtual bool losesSilently() const = 0;

  /// Writes a line to the debug trace, which shows only the serial line.
  virtual void trace(TextView label, TextView text = {}) = 0;

 protected:
  virtual bool hasUnread() = 0;
  /// Reads and drops what is waiting.
  virtual void drop() = 0;
};

}  // namespace mirvane
