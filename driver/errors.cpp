#include <algorithm>
#include <array>

#include "automation/number_text.h"
#include "driver/device_errors.h"
#include "driver/fiscal_varlen_module2.h"
#include "driver/hex.h"
#include "driver/result_codes.h"
#include "interface/dec2bin.h"
#include "interface/module_state.h"
#include "interface/text.h"

namespace mirvane {
namespace {

// Codes that the printer status byte stands for.
constexpr int kDeviceStatus = 254;
constexpr int kDeviceError = 255;

// Whether a command pays, or starts a card terminal: the card payment under way may be its own. Any other command only
// met that state and was not carried out; so did the question about what remains to pay.
bool couldPay(TextView command) {
  return command.starts_with(u"E/2/") || (command.starts_with(u"5/") && !command.starts_with(u"5/99/"));
}

// A status byte as eight binary digits, the most significant first.
class StatusBits {
 public:
  explicit StatusBits(TextView hexDigits) {
    dec2Bin converter;
    converter.setDecimal_(static_cast<std::int16_t>(hexValue(hexDigits)));
    digits_ = std::get<Text>(converter.Bin_());
    digits_.insert(0, 8 - std::min<std::size_t>(digits_.size(), 8), u'0');
  }

  /// `position` from 1, the most significant bit.
  bool isSet(std::size_t position) const { return digits_[position - 1] == u'1'; }

 private:
  Text digits_;
};

// A status byte's two digits, at `first`; none in a reply that is too short to hold both status bytes.
TextView statusDigits(const Text& reply, std::size_t first) {
  constexpr std::size_t kResultAndStatusLength = 8;
  return reply.size() < kResultAndStatusLength ? TextView() : TextView(reply).substr(first, 2);
}

}  // namespace

void FiscalVarlenModule2::decodeReply(Text& Exresult) {
  int code = hexValue(TextView(Exresult).substr(0, 2));

  const StatusBits fiscal(statusDigits(Exresult, 6));
  flags_.dayOpen = fiscal.isSet(7);
  flags_.transactionOpen = fiscal.isSet(6);
  flags_.inPayment = fiscal.isSet(5);

  const StatusBits printer(statusDigits(Exresult, 3));
  flags_.flashNearFull = printer.isSet(3);
  const auto condition = [&](std::size_t position, int meaning, TextView text) {
    if (!printer.isSet(position)) return;
    code = meaning;
    Exresult = text;
  };
  // In this order: of several conditions the last one is told.
  condition(7, kDeviceError, u"/ Σφάλμα Συσκευής !");
  condition(6, kDeviceStatus, u"Tέλος Χαρτιού !");
  condition(4, kDeviceError, u"/Αποσυνδεδεμένος Εκτυπωτής!");
  condition(2, kDeviceError, u"/o Εκτυπωτής δεν απαντά!'                           ");

  if (const TextView text = deviceErrorText(code); !text.empty()) Exresult = text;
  if (code == kDeviceStatus) Exresult.insert(0, u"DEVICE STATUS:");
  if (code == kDeviceError) Exresult.insert(0, u"DEVICE ERROR:");
}

void FiscalVarlenModule2::report(std::int16_t Result, const Text& Exresult, bool SupressError_) {
  if (SupressError_) return;
  const Text prompt = u"Λάθος Φορολ. εκτυπωτή (" + numberText(std::int32_t{Result}) + u")\r\n" + Exresult;
  moduleState().platform->screen.messageBox(prompt, platform::kExclamation, kDeviceFamilyName);
}

void FiscalVarlenModule2::SendCommand_(Text& CmdString, std::int16_t& Result, Text& Exresult, bool& SupressError_,
                                       Text& /*Pass*/, std::int16_t& timeOut) {
  // A copy: the caller may have given one variable for the command and for the outcome.
  Text command(trim(CmdString));
  bool silent = SupressError_;
  bool metCardPayment = false;
  for (;;) {
    Result = 0;
    Exresult.clear();
    Text noPass;
    Send_(command, Result, Exresult, silent, noPass, timeOut);
    if (Result == 0) return;
    std::int16_t code = Result;
    const bool isCardPayment = code == kCardPaymentInProgress;
    // A card payment that is met again after its end is another's, or none that ends.
    if ((isCardPayment && metCardPayment) || !convertTo<bool>(currentDriver()->call("isErrorFixable", code))) break;
    // From within another wait there is no outcome of this command's own.
    if (!showDeviceWaitDialog(Result, Exresult)) break;
    Result = lastResult;
    Exresult = lastexResult;
    if (Result != 0) break;
    // What could have been this very command must never go out twice: the card could be charged twice.
    if ((isCardPayment || waitSawCardPayment_) && couldPay(command)) return;
    if (!isCardPayment && !bShouldRetry(code)) return;
    metCardPayment = metCardPayment || isCardPayment;
    // The box about unknown characters comes once, not again for the same command sent again.
    silent = true;
  }
  report(Result, Exresult, SupressError_);
}

void FiscalVarlenModule2::send(const Text& command, std::int16_t& Result, Text& Exresult, bool& SupressError_,
                               std::int16_t timeOut) {
  Text text = command;
  Text noPass;
  SendCommand_(text, Result, Exresult, SupressError_, noPass, timeOut);
}

// What the device ends by itself. Paper, an open tray or an offline printer need a person, who may not be there: those
// come back to the caller at once.
bool FiscalVarlenModule2::isErrorFixable(std::int16_t& iErr) {
  return iErr == kBusy || iErr == kBusyWithTaxAuthority || iErr == kCardPaymentInProgress;
}

// Never after a card payment: the device took that command, and sending it again could charge the card twice.
bool FiscalVarlenModule2::bShouldRetry(std::int16_t& iErr) { return iErr == kBusy || iErr == kBusyWithTaxAuthority; }

bool FiscalVarlenModule2::isCriticalError(std::int16_t& iErr) {
  // Fiscal unit, battery, flash and card failures: what only a technician ends. A lost link is critical too; a device
  // that asks to be tried later is not.
  constexpr std::array kCritical = {27, 28, 29, 32, 50, 76, 100, 118, 119, 132, 133, 134, 135, 144, 148, 149};
  if (iErr < 0) return iErr != kNotNow;
  return std::find(kCritical.begin(), kCritical.end(), iErr) != kCritical.end();
}

}  // namespace mirvane
