#include <algorithm>
#include <array>

#include "link/link.h"
#include "session/session.h"
#include "session/wait_window.h"
#include "state/module_state.h"
#include "text/number_text.h"

namespace mirvane {
namespace {

constexpr TextView kCaption = u"Μήνυμα Ταμειακής (%1)";
constexpr TextView kState = u"Κατάσταση [%1]";
constexpr TextView kCardState = u"Αναμονή EFTPOS[%1]";

Text withValue(TextView text, TextView value) {
  constexpr TextView kPlace = u"%1";
  return Text(text).replace(text.find(kPlace), kPlace.size(), value);
}

Text stateText(TextView text, std::int16_t code) { return withValue(text, numberText(std::int32_t{code})); }

// How a card payment can end badly.
bool endsCardPayment(const Reply& look) {
  constexpr std::array kEnds = {DeviceCode::kNoChange, DeviceCode::kCardFailed, DeviceCode::kCardNotRead,
                                DeviceCode::kTerminalInactive};
  return std::any_of(kEnds.begin(), kEnds.end(), [&look](DeviceCode code) { return look.is(code); });
}

}  // namespace

WaitMark::WaitMark() { moduleState().waitDialogOpen = true; }
WaitMark::~WaitMark() { moduleState().waitDialogOpen = false; }

platform::WaitText waitText(const Reply& reason) {
  // Some device texts begin with a "/".
  const Text shown = reason.message.substr(reason.message.rfind(u'/') + 1);
  return {withValue(kCaption, kDeviceFamilyName), stateText(kState, reason.result), shown};
}

void SilenceWindow::repeats() {
  const Reply silence = silentDevice();
  outcome_.take(silence);
  if (view_ != nullptr || outcome_.SupressError_ || moduleState().waitDialogOpen) return;
  mark_ = std::make_unique<WaitMark>();
  record(recorder::EventKind::kWait, silence.result, silence.message);
  view_ = moduleState().platform->screen.showWait(waitText(silence));
}

void SilenceWindow::waits() {
  if (view_ != nullptr) view_->repaint();
}

SilenceWindow::~SilenceWindow() {
  if (view_ != nullptr) record(recorder::EventKind::kWaited, 0);
}

bool Session::waitForDevice(const Reply& reason) {
  if (moduleState().waitDialogOpen) return false;
  const WaitMark mark;
  record(recorder::EventKind::kWait, reason.result, reason.message);
  lastResult = 0;
  lastexResult = u"00/00/00";
  waitSawCardPayment_ = false;
  moduleState().platform->screen.waitWhile(waitText(reason),
                                           [this](platform::WaitText& text) { return deviceIsStillBusy(text); });
  record(recorder::EventKind::kWaited, lastResult, lastexResult);
  return true;
}

// One look at the device, every second. Only a final answer ends the wait: how long a card payment may take is the
// terminal's affair.
bool Session::deviceIsStillBusy(platform::WaitText& text) {
  Reply look;
  bool silent = true;
  Text question = u"?/";
  Text noPass;
  driverOrRefusal()->call("Send_", question, look.result, look.message, silent, noPass);
  lastResult = look.result;
  lastexResult = look.message;
  if (look.succeeded() || endsCardPayment(look)) return false;
  const bool isCardPayment = look.is(DeviceCode::kCardUnderWay);
  if (isCardPayment) waitSawCardPayment_ = true;
  text.state = stateText(isCardPayment ? kCardState : kState, look.result);
  text.message = look.message;
  return true;
}

}  // namespace mirvane
