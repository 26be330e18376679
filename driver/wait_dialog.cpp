#include <algorithm>
#include <array>

#include "automation/number_text.h"
#include "driver/fiscal_varlen_module2.h"
#include "driver/result_codes.h"
#include "interface/module_state.h"

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

// How a card payment can end badly: no change, payment failed, transactions not read, terminal not active.
bool endsCardPayment(std::int16_t code) {
  constexpr std::array<std::int16_t, 4> kCodes = {112, 156, 157, 159};
  return std::find(kCodes.begin(), kCodes.end(), code) != kCodes.end();
}

class OpenMark {
 public:
  OpenMark() { moduleState().waitDialogOpen = true; }
  OpenMark(const OpenMark&) = delete;
  OpenMark& operator=(const OpenMark&) = delete;
  ~OpenMark() { moduleState().waitDialogOpen = false; }
};

}  // namespace

bool FiscalVarlenModule2::showDeviceWaitDialog(std::int16_t code, const Text& message) {
  if (moduleState().waitDialogOpen) return false;
  const OpenMark mark;
  lastResult = 0;
  lastexResult = u"00/00/00";
  waitSawCardPayment_ = false;
  // Some device texts begin with a "/".
  const Text shown = message.substr(message.rfind(u'/') + 1);
  moduleState().platform->screen.waitWhile({withValue(kCaption, kDeviceFamilyName), stateText(kState, code), shown},
                                           [this](platform::WaitText& text) { return deviceIsStillBusy(text); });
  return true;
}

// One look at the device, every second. Only a final answer ends the wait: how long a card payment may take is the
// terminal's affair.
bool FiscalVarlenModule2::deviceIsStillBusy(platform::WaitText& text) {
  Text poll = u"?/";
  std::int16_t result = 0;
  Text reply;
  bool silent = true;
  Text noPass;
  currentDriver()->call("Send_", poll, result, reply, silent, noPass);
  lastResult = result;
  lastexResult = reply;
  if (result == 0 || endsCardPayment(result)) return false;
  const bool isCardPayment = result == kCardPaymentInProgress;
  if (isCardPayment) waitSawCardPayment_ = true;
  text.state = stateText(isCardPayment ? kCardState : kState, result);
  text.message = reply;
  return true;
}

}  // namespace mirvane
