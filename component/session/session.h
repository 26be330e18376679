#pragma once

#include <optional>

#include "interface/outcome.h"
#include "link/link.h"
#include "platform/ports.h"
#include "protocol/command.h"

namespace mirvane {

/// A driver's communication with its register: sends commands, asks questions, waits for states that the register ends
/// by itself, repeats what may be repeated, and shows message boxes for failures.
class Session {
 public:
  /// `words` describes the register's commands and must outlive this object.
  explicit Session(const Words& words) : words_(words) {}

  /// One exchange, without waiting and without a message box for a failure. Remembers the reply and the register's
  /// state. While a serial register does not answer, `outcome` says so, and a window too unless errors are suppressed.
  Reply exchange(TextView command, Outcome outcome, std::int16_t timeOut = 0);

  /// Sends a command and reports its outcome, with a message box unless suppressed. Waits for a state that the register
  /// ends by itself, and sends the command again if that cannot execute it twice.
  Reply send(TextView command, Outcome outcome, std::int16_t timeOut = 0);

  /// The same without message boxes; only the return value reports the outcome.
  Reply sendSilently(TextView command);

  /// A payment, sent as with `send`.
  struct Payment {
    Reply reply;
    /// Whether the register certainly reported how it ended. It reports the end of a card payment only once, and that
    /// report can be lost.
    bool isTold;
  };
  Payment pay(TextView command, Outcome outcome, std::int16_t timeOut);

  /// Reports a failure that no command caused, with its message box unless suppressed.
  static void fail(const Reply& failure, Outcome outcome);

  /// The last complete reply, without control bytes.
  const Text& lastReply() const { return lastReply_; }
  /// The state from the last reply's status bytes.
  const Reply::Flags& flags() const { return flags_; }

  /// What the register last reported, or nothing: its serial number; whether the receipt has a payment; and the
  /// remaining amount, as long as only questions have been sent since.
  const std::optional<Text>& serialNumber() const { return serialNumber_; }
  std::optional<bool> isInPayment() const { return isInPayment_; }
  std::optional<double> remaining() const { return remaining_; }
  /// How many state questions of a wait needed more than one attempt, so that a reported end may have been lost.
  int uncertainLooks() const { return uncertainLooks_; }

  /// Outcome of the last wait for the register.
  std::int16_t lastResult{};
  Text lastexResult;

 private:
  Payment sendAs(const Word& word, TextView command, Outcome outcome, std::int16_t timeOut);
  Reply exchangeAs(const Word& word, TextView command, bool isSilent, Outcome outcome, std::int16_t timeOut);
  void remember(const Word& word, TextView command, const Answer& answer);
  std::optional<Reply> strangerThere();
  /// Returns false and shows nothing if a wait is already in progress. The outcome is in lastResult and lastexResult.
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
  /// Whether the last wait saw a card payment in progress.
  bool waitSawCardPayment_ = false;
};

}  // namespace mirvane
