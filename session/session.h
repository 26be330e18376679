#pragma once

#include "interface/outcome.h"
#include "link/link.h"
#include "platform/ports.h"
#include "protocol/command.h"

namespace mirvane {

/// A driver's conversation with its device: sends and asks, waits for what the device ends by itself, repeats what may
/// be repeated, and shows the box of what failed.
class Session {
 public:
  /// One exchange, without waiting and without the box of a failure. Remembers the reply and the device's state. While
  /// a serial device does not answer, `outcome` says so, and unless errors are suppressed a window.
  Reply exchange(TextView command, const Sending& sending, Outcome outcome);

  /// Sends a command and tells its outcome, in a message box too unless that is suppressed. A state that the device
  /// ends by itself is waited for, and the command sent again where that cannot do it twice.
  Reply send(const Text& command, Outcome outcome, std::int16_t timeOut = 0);

  /// The same without boxes, and nobody is told.
  Reply sendSilently(const Text& command);

  /// Tells a failure that is not a command's, and shows its box unless that is suppressed.
  static void fail(const Reply& failure, Outcome outcome);

  /// The last complete reply, without control bytes.
  const Text& lastReply() const { return lastReply_; }
  /// State as of the last reply's status bytes.
  const Reply::Flags& flags() const { return flags_; }

  /// Outcome of the last wait for the device.
  std::int16_t lastResult{};
  Text lastexResult;

 private:
  /// False, and nothing is shown, when a wait is under way already. The outcome is in lastResult and lastexResult.
  bool waitForDevice(const Reply& reason);
  bool deviceIsStillBusy(platform::WaitText& text);

  Text lastReply_;
  Reply::Flags flags_;
  /// Whether the last wait for the device saw a card payment under way.
  bool waitSawCardPayment_ = false;
};

}  // namespace mirvane
