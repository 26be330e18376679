#include <algorithm>
#include <array>

#include "session/session.h"
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

class OpenMark {
 public:
  OpenMark() { moduleState().waitDialogOpen = true; }
  OpenMark(const OpenMark&) = delete;
  OpenMark& operator=(const OpenMark&) = delete;
  ~OpenMark() { moduleState().waitDialogOpen = false; }
};

}  // namespace

bool Session::waitForDevice(const Reply& reason) {
  if (moduleState().waitDialogOpen) return false;
  const OpenMark mark;
  lastResult = 0;
  lastexResult = u"00/00/00";
  waitSawCardPayment_ = false;
  // Some device texts begin with a "/".
  const Text shown = reason.message.substr(reason.message.rfind(u'/') + 1);
  moduleState().platform->screen.waitWhile(
      {withValue(kCaption, kDeviceFamilyName), stateText(kState, reason.result), shown},
      [this](platform::WaitText& text) { return deviceIsStillBusy(text); });
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
