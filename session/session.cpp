#include "session/session.h"

#include "session/wait_window.h"
#include "state/module_state.h"

namespace mirvane {
namespace {

// Whether a command pays, or starts a card terminal: the card payment under way may be its own. Any other command only
// met that state and was not carried out; so did the question about what remains to pay.
bool couldPay(TextView command) {
  return command.starts_with(u"E/2/") || (command.starts_with(u"5/") && !command.starts_with(u"5/99/"));
}

bool isFixable(std::int16_t result) { return convertTo<bool>(driverOrRefusal()->call("isErrorFixable", result)); }

}  // namespace

Reply Session::exchange(TextView command, const Sending& sending, Outcome outcome) {
  Reply reply;
  {
    SilenceWindow window(outcome);
    reply = mirvane::exchange(command, sending, window);
  }
  lastReply_ = reply.raw();
  // A failure of the link tells nothing of the device.
  if (reply.result >= 0) flags_ = reply.flags();
  return reply;
}

Reply Session::send(const Text& command, Outcome outcome, std::int16_t timeOut) {
  // A copy: the caller may have given one variable for the command and for the outcome.
  const Text sent(trim(command));
  Sending sending{timeOut, outcome.SupressError_};
  bool metCardPayment = false;
  for (;;) {
    outcome.take({});
    Reply reply = exchange(sent, sending, outcome);
    outcome.take(reply);
    if (reply.succeeded()) return reply;
    const bool isCardPayment = reply.is(DeviceCode::kCardUnderWay);
    // A card payment that is met again after its end is another's, or none that ends. From within another wait there
    // is no outcome of this command's own.
    if ((isCardPayment && metCardPayment) || !isFixable(reply.result) || !waitForDevice(reply)) {
      fail(reply, outcome);
      return reply;
    }
    Reply end(lastResult, lastexResult);
    outcome.take(end);
    if (!end.succeeded()) {
      fail(end, outcome);
      return end;
    }
    // What could have been this very command must never go out twice: the card could be charged twice.
    if ((isCardPayment || waitSawCardPayment_) && couldPay(sent)) return end;
    if (!isCardPayment && !mayBeSentAgain(reply.result)) return end;
    metCardPayment = metCardPayment || isCardPayment;
    // The box about unknown characters comes once, not again for the same command sent again.
    sending.silent = true;
  }
}

Reply Session::sendSilently(const Text& command) {
  OwnOutcome own;
  return send(command, own);
}

void Session::fail(const Reply& failure, Outcome outcome) {
  outcome.take(failure);
  if (outcome.SupressError_) return;
  const Text prompt =
      u"Λάθος Φορολ. εκτυπωτή (" + numberText(std::int32_t{failure.result}) + u")\r\n" + failure.message;
  showBox(prompt, platform::kExclamation, kDeviceFamilyName);
}

}  // namespace mirvane
