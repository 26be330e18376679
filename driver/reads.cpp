#include "driver/fiscal_varlen_module2.h"
#include "driver/reply_fields.h"
#include "interface/cls_trans_total.h"
#include "interface/fiscal_types.h"

namespace mirvane {

// Sends a command that asks for something; `fill` takes the fields out of the reply when there is one. They come from
// the reply itself, since a status condition puts its message into Exresult.
template <class Fill>
void FiscalVarlenModule2::read(const Text& command, const Outcome& outcome, Fill fill) {
  send(command, outcome.Result, outcome.Exresult, outcome.SupressError_);
  if (outcome.Result == 0) fill(ReplyFields(lastReply_));
}

Value FiscalVarlenModule2::getDate(Text& d, std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  read(u"t/", {Result, Exresult, SupressError_}, [&](const ReplyFields& fields) { d = fields.text(0); });
  return {};
}

Value FiscalVarlenModule2::getTime(Text& d, std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  read(u"t/", {Result, Exresult, SupressError_}, [&](const ReplyFields& fields) { d = fields.text(1); });
  return {};
}

Value FiscalVarlenModule2::getSerialNumber(Text& sN, std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  read(u"a/", {Result, Exresult, SupressError_}, [&](const ReplyFields& fields) {
    serialNumber_ = fields.text(0);
    sN = serialNumber_;
  });
  return {};
}

void FiscalVarlenModule2::transactionTotals(clsTransTotal& c, std::int16_t& Result, Text& Exresult,
                                            bool& SupressError_) {
  read(u"9/", {Result, Exresult, SupressError_}, [&](const ReplyFields& fields) {
    c.VatA = fields.number(0);
    c.VatB = fields.number(1);
    c.VatC = fields.number(2);
    c.VatD = fields.number(3);
    c.VatE = fields.number(4);
    c.receiptNumber = fields.integer<std::int32_t>(5);
    c.receiptTotalAmt = fields.number(6);
  });
}

// The device's reply does not tell a full memory, a paid-out, a received-on-account or a nearly full fiscal memory, so
// those flags stay False.
clsStatus& FiscalVarlenModule2::refreshedStatus() {
  if (status_ == nullptr) status_ = std::make_shared<clsStatus>();
  status_->isDayOpen = flags_.dayOpen;
  status_->isTransactionOpen = flags_.transactionOpen;
  status_->isInPayment = flags_.inPayment;
  status_->isFlashNearFull = flags_.flashNearFull;
  status_->isEuro = true;
  return *status_;
}

std::shared_ptr<clsStatus> FiscalVarlenModule2::StatusRead() {
  refreshedStatus().FiscalType = FISCAL_VARLENFISCAL2;
  status_->FiscalSN = serialNumber_;
  return status_;
}

void FiscalVarlenModule2::printerStatusRead(std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  send(u"?/", Result, Exresult, SupressError_);
  if (Result == 0) refreshedStatus();
}

}  // namespace mirvane
