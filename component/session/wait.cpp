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

/// What the operator sees.
struct Wait {
  bool isShown = false;
  platform::WaitView* view = nullptr;
  /// The program's call that it belongs to.
  std::uint64_t call = 0;
};

Text withValue(TextView text, TextView value) {
  constexpr TextView kPlace = u"%1";
  return Text(text).replace(text.find(kPlace), kPlace.size(), value);
}

Text stateText(TextView text, std::int16_t code) { return withValue(text, numberText(std::int32_t{code})); }

// The failures that end a card payment.
bool endsCardPayment(const Reply& look) {
  constexpr std::array kEnds = {DeviceCode::kNoChange, DeviceCode::kCardFailed, DeviceCode::kCardNotRead,
                                DeviceCode::kTerminalInactive};
  return std::any_of(kEnds.begin(), kEnds.end(), [&look](DeviceCode code) { return look.is(code); });
}

}  // namespace

WaitMark::WaitMark() { kept<Wait>() = {true, nullptr, moduleState().call.number}; }
WaitMark::~WaitMark() { kept<Wait>() = {}; }
void WaitMark::setView(platform::WaitView* view) { kept<Wait>().view = view; }

bool isWaitShown() { return kept<Wait>().isShown && kept<Wait>().call == moduleState().call.number; }
platform::WaitView* waitView() { return isWaitShown() ? kept<Wait>().view : nullptr; }

platform::WaitText waitText(const Reply& reason) {
  // Some of the register's texts begin with "/".
  const Text shown = reason.message.substr(reason.message.rfind(u'/') + 1);
  return {withValue(kCaption, kDeviceFamilyName), stateText(kState, reason.result), shown};
}

void SilenceWindow::fallsSilent() {
  const Reply silence = silentDevice();
  outcome_.set(silence);
  if (view_ != nullptr) return;
  const Call& call = moduleState().call;
  if (platform::WaitView* const standing = waitView()) return standing->show(waitText(silence));
  if (isWaitShown() || (call.isInside ? call.isSilent : outcome_.SupressError_)) return;
  mark_ = std::make_unique<WaitMark>();
  record(recorder::EventKind::kWait, silence.result, silence.message);
  view_ = moduleState().platform->screen.showWait(waitText(silence));
  WaitMark::setView(view_.get());
}

void SilenceWindow::waits() {
  if (!isServiceDue()) return;
  if (platform::WaitView* const standing = waitView()) {
    standing->repaint();
  } else {
    moduleState().platform->screen.serveWindows();
  }
}

SilenceWindow::~SilenceWindow() {
  if (mark_ != nullptr) record(recorder::EventKind::kWaited, 0);
}

bool Session::waitForDevice(const Reply& reason) {
  if (isWaitShown()) return false;
  {
    const WaitMark mark;
    record(recorder::EventKind::kWait, reason.result, reason.message);
    lastResult = 0;
    lastexResult = u"00/00/00";
    waitSawCardPayment_ = false;
    isWaiting_ = true;
    moduleState().platform->screen.waitWhile(waitText(reason),
                                             [this](platform::WaitView& view) { return deviceIsStillBusy(view); });
    isWaiting_ = false;
    record(recorder::EventKind::kWaited, lastResult, lastexResult);
  }
  if (const auto stranger = strangerThere()) {
    lastResult = stranger->result;
    lastexResult = stranger->message;
  }
  return true;
}

// Asks the register once per second. Only a final answer ends the wait: how long a card payment takes is up to the
// terminal.
bool Session::deviceIsStillBusy(platform::WaitView& view) {
  WaitMark::setView(&view);
  Reply look;
  bool silent = true;
  Text question(words_.askState);
  Text noPass;
  lastAttempts_ = 1;
  driverOrRefusal()->call("Send_", question, look.result, look.message, silent, noPass);
  if (lastAttempts_ > 1) ++uncertainLooks_;
  lastResult = look.result;
  lastexResult = look.message;
  if (look.succeeded() || endsCardPayment(look)) return false;
  const bool isCardPayment = look.is(DeviceCode::kCardUnderWay);
  if (isCardPayment) waitSawCardPayment_ = true;
  platform::WaitText text = waitText(look);
  text.state = stateText(isCardPayment ? kCardState : kState, look.result);
  text.message = look.message;
  view.show(text);
  return true;
}

}  // namespace mirvane
