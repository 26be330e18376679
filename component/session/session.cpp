#include "session/session.h"

#include "link/open_port.h"
#include "link/port.h"
#include "session/wait_window.h"
#include "state/module_state.h"
#include "text/text.h"

namespace mirvane {
namespace {

bool isFixable(std::int16_t result) { return convertTo<bool>(driverOrRefusal()->call("isErrorFixable", result)); }

}  // namespace

Reply Session::exchange(TextView command, Outcome outcome, std::int16_t timeOut) {
  return exchangeAs(words_.of(trim(command)), command, outcome.SupressError_, outcome, timeOut);
}

Reply Session::exchangeAs(const Word& word, TextView command, bool isSilent, Outcome outcome, std::int16_t timeOut) {
  SilenceWindow window(outcome);
  // The register would take it for a repetition if the previous ACK was lost.
  if (!word.asks && !word.movesJournal && looksRepeated(command)) {
    Reply between = mirvane::exchange(words_.askState, {.word = words_.of(words_.askState)}, window).reply;
    if (between.result < 0) return between;
  }
  Answer answer = mirvane::exchange(command, {timeOut, isSilent, word}, window);
  remember(word, command, answer);
  const bool goesOn = answer.reply.result < 0 || answer.reply.is(DeviceCode::kCardUnderWay) || isWaiting_;
  if (goesOn) return answer.reply;
  return strangerThere().value_or(answer.reply);
}

void Session::remember(const Word& word, TextView command, const Answer& answer) {
  const Reply& reply = answer.reply;
  lastReply_ = reply.raw();
  lastAttempts_ = answer.attempts;
  if (!word.asks) remaining_.reset();
  // A link failure says nothing about the register.
  if (reply.result < 0) return;
  flags_ = reply.flags();
  if (!hasStatus(reply.raw())) return;
  isInPayment_ = reply.flags().inPayment;
  if (!reply.succeeded() || reply.count() == 0) return;
  if (word.asksRemaining) remaining_ = reply.number(0);
  if (trim(command) == words_.askSerialNumber) serialNumber_ = reply.text(0);
}

// A reopened line may have a different register on it. It is asked for its serial number after the answer to the frame
// sent before: otherwise it would take the next repetition of that frame for a new one.
std::optional<Reply> Session::strangerThere() {
  constexpr double kSeconds = 2;
  if (!serialNumber_ || !thePort().isReopened) return std::nullopt;
  const auto reply = askBriefly(words_.askSerialNumber, kSeconds);
  if (!reply || !reply->succeeded() || reply->count() == 0) return std::nullopt;
  thePort().isReopened = false;
  if (reply->text(0) == *serialNumber_) return std::nullopt;
  return refuseStranger();
}

Reply Session::send(TextView command, Outcome outcome, std::int16_t timeOut) {
  const Word word = words_.of(trim(command));
  Payment sent = sendAs(word, command, outcome, timeOut);
  // The remaining amount is the sender's business; nobody here knows what it was before.
  if (!sent.reply.succeeded() || !word.paysByCard || sent.isTold) return sent.reply;
  Reply unknown{link_result::kNoAnswer, link_result::kNoAnswerText};
  fail(unknown, outcome);
  return unknown;
}

Session::Payment Session::pay(TextView command, Outcome outcome, std::int16_t timeOut) {
  return sendAs({.pays = true}, command, outcome, timeOut);
}

Session::Payment Session::sendAs(const Word& word, TextView command, Outcome outcome, std::int16_t timeOut) {
  // A copy, because the caller may have given one variable for both the command and the outcome.
  const Text sent(trim(command));
  const int looksBefore = uncertainLooks_;
  bool isSilent = outcome.SupressError_;
  bool metCardPayment = false;
  for (;;) {
    outcome.set({});
    Reply reply = exchangeAs(word, sent, isSilent, outcome, timeOut);
    const bool isAnswered = hasStatus(reply.raw());
    outcome.set(reply);
    if (reply.succeeded()) return {reply, isAnswered && uncertainLooks_ == looksBefore};
    const bool isCardPayment = reply.is(DeviceCode::kCardUnderWay);
    // A card payment met again after its end is another one, or one that does not end. Within another wait this command
    // has no outcome of its own.
    if ((isCardPayment && metCardPayment) || !isFixable(reply.result) || !waitForDevice(reply)) {
      fail(reply, outcome);
      return {reply, isAnswered && uncertainLooks_ == looksBefore};
    }
    const Reply end(lastResult, lastexResult);
    const bool isTold = isAnswered && uncertainLooks_ == looksBefore;
    outcome.set(end);
    if (!end.succeeded()) {
      fail(end, outcome);
      return {end, isTold};
    }
    // A command that may be this very payment must never be sent twice: the card could be charged twice.
    if ((isCardPayment || waitSawCardPayment_) && word.pays) return {end, isTold};
    if (!isCardPayment && !mayBeSentAgain(reply.result)) return {end, isTold};
    metCardPayment = metCardPayment || isCardPayment;
    // The box about unknown characters is shown once, not again when the command is sent again.
    isSilent = true;
  }
}

Reply Session::sendSilently(TextView command) {
  OwnOutcome own;
  return send(command, own);
}

void Session::fail(const Reply& failure, Outcome outcome) {
  outcome.set(failure);
  if (outcome.SupressError_) return;
  const Text prompt =
      u"Λάθος Φορολ. εκτυπωτή (" + numberText(std::int32_t{failure.result}) + u")\r\n" + failure.message;
  showBox(prompt, platform::kExclamation, kDeviceFamilyName);
}

}  // namespace mirvane
