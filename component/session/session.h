#pragma once

#include <optional>

#include "interface/outcome.h"
#include "link/link.h"
#include "platform/ports.h"
#include "protocol/command.h"

namespace mirvane {

/// A driver's conversation with its device: sends and asks, waits for what the device ends by itself, repeats what may
/// be repeated, and shows the box of what failed.
class Session {
 public:
  /// `words` are the device's, and outlive this.
  explicit Session(const Words& words) : words_(words) {}

  /// One exchange, without waiting and without the box of a failure. Remembers the reply and the device's state. While
  /// a serial device does not answer, `outcome` says so, and unless errors are suppressed a window.
  Reply exchange(TextView command, Outcome outcome, std::int16_t timeOut = 0);

  /// Sends a command and tells its outcome, in a message box too unless that is suppressed. A state that the device
  /// ends by itself is waited for, and the command sent again where that cannot do it twice.
  Reply send(TextView command, Outcome outcome, std::int16_t timeOut = 0);

  /// The same without boxes, and nobody is told.
  Reply sendSilently(TextView command);

  /// A payment, sent as `send` does.
  struct Payment {
    Reply reply;
    /// Whether the device surely told how it ended: it can tell the end of a card payment once, and that can get lost.
    bool isTold;
  };
  Payment pay(TextView command, Outcome outcome, std::int16_t timeOut);

  /// Tells a failure that is not a command's, and shows its box unless that is suppressed.
  static void fail(const Reply& failure, Outcome outcome);

  /// The last complete reply, without control bytes.
  const Text& lastReply() const { return lastReply_; }
  /// State as of the last reply's status bytes.
  const Reply::Flags& flags() const { return flags_; }

  /// What the device told last, nothing where it has not told: its serial number, whether a payment stands in the
  /// receipt, and what remains to pay, as long as only questions were sent since.
  const std::optional<Text>& serialNumber() const { return serialNumber_; }
  std::optional<bool> isInPayment() const { return isInPayment_; }
  std::optional<double> remaining() const { return remaining_; }
  /// How often the device was looked at in a wait with more than one try, so that an end may have got lost.
  int uncertainLooks() const { return uncertainLooks_; }

  /// Outcome of the last wait for the device.
  std::int16_t lastResult{};
  Text lastexResult;

 private:
  Payment sendAs(const Word& word, TextView command, Outcome outcome, std::int16_t timeOut);
  Reply exchangeAs(const Word& word, TextView command, bool isSilent, Outcome outcome, std::int16_t timeOut);
  void remember(const Word& word, TextView command, const Answer& answer);
  std::optional<Reply> strangerThere();
  /// False, and nothing is shown, when a wait is under way already. The outcome is in lastResult and lastexResult.
  bool waitForDevice(const Reply& reason);
  bool deviceIsStillBusy(platform::WaitView& view);

  const Words& words_;
  Text lastReply_;
  Reply::Flags flags_;
  std::optional<Text> serialNumber_;
  std::optional<bool> isInPayment_;
  std::optional<double> remaining_;
  int lastAttempts_ = 0;
  int uncertainLooks_ = 0;
  bool isWaiting_ = false;
  /// Whether the last wait for the device saw a card payment under way.
  bool waitSawCardPayment_ = false;
};

}  // namespace mirvane
