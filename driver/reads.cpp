#include "driver/command.h"
#include "driver/fiscal_varlen_module2.h"
#include "driver/reply_fields.h"
#include "interface/cls_accumulator.h"
#include "interface/cls_daily_acc.h"
#include "interface/cls_param.h"
#include "interface/cls_trans_total.h"
#include "interface/fiscal_types.h"

namespace mirvane {
namespace {

using Lines = std::initializer_list<std::pair<Text*, std::int16_t*>>;

// Printed lines, each behind its size.
void fillLines(const ReplyFields& fields, const Lines& lines) {
  std::size_t i = 0;
  for (const auto& [line, size] : lines) {
    *size = fields.size(i++);
    *line = fields.text(i++);
  }
}

void fillNumbers(const ReplyFields& fields, std::initializer_list<double*> numbers) {
  std::size_t i = 0;
  for (double* const number : numbers) *number = fields.number(i++);
}

}  // namespace

// Sends a command that asks for something; `fill` takes the fields out of the reply when there is one. They come from
// the reply itself, since a status condition puts its message into Exresult.
void FiscalVarlenModule2::read(const Text& command, const Outcome& outcome,
                               const std::function<void(const ReplyFields&)>& fill) {
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

Value FiscalVarlenModule2::getHeader(Text& line1, std::int16_t& line1Size, Text& line2, std::int16_t& line2Size,
                                     Text& line3, std::int16_t& line3Size, Text& line4, std::int16_t& line4Size,
                                     Text& line5, std::int16_t& line5Size, std::int16_t& Result, Text& Exresult,
                                     bool& SupressError_) {
  read(u"h/", {Result, Exresult, SupressError_}, [&](const ReplyFields& fields) {
    fillLines(
        fields,
        {{&line1, &line1Size}, {&line2, &line2Size}, {&line3, &line3Size}, {&line4, &line4Size}, {&line5, &line5Size}});
  });
  return {};
}

Value FiscalVarlenModule2::getFooter(Text& line1, std::int16_t& line1Size, Text& line2, std::int16_t& line2Size,
                                     Text& line3, std::int16_t& line3Size, std::int16_t& Result, Text& Exresult,
                                     bool& SupressError_) {
  read(u"{/", {Result, Exresult, SupressError_}, [&](const ReplyFields& fields) {
    fillLines(fields, {{&line1, &line1Size}, {&line2, &line2Size}, {&line3, &line3Size}});
  });
  return {};
}

Value FiscalVarlenModule2::getVatCategories(double& VatA, double& VatB, double& VatC, double& VatD, double& VatE,
                                            std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  read(u"e/", {Result, Exresult, SupressError_}, [&](const ReplyFields& fields) {
    fillNumbers(fields, {&VatA, &VatB, &VatC, &VatD, &VatE});
  });
  return {};
}

void FiscalVarlenModule2::transactionTotals(clsTransTotal& c, std::int16_t& Result, Text& Exresult,
                                            bool& SupressError_) {
  read(u"9/", {Result, Exresult, SupressError_}, [&](const ReplyFields& fields) {
    fillNumbers(fields, {&c.VatA, &c.VatB, &c.VatC, &c.VatD, &c.VatE});
    c.receiptNumber = fields.integer<std::int32_t>(5);
    c.receiptTotalAmt = fields.number(6);
  });
}

// The device lays out the two sales replies differently.
void FiscalVarlenModule2::getSalesPerDepartment(clsAccumulator& c, std::int16_t& Result, Text& Exresult,
                                                bool& SupressError_) {
  read(Command(u"D/").integer(c.Id).str(), {Result, Exresult, SupressError_}, [&](const ReplyFields& fields) {
    c.Desc = fields.text(0);
    c.Amount = fields.number(3);
    c.Count = fields.number(4);
  });
}

void FiscalVarlenModule2::getSalesPerCategory(clsAccumulator& c, std::int16_t& Result, Text& Exresult,
                                              bool& SupressError_) {
  read(Command(u"k/").integer(c.Id).str(), {Result, Exresult, SupressError_}, [&](const ReplyFields& fields) {
    c.Desc = fields.text(0);
    c.Amount = fields.number(1);
    c.Count = fields.number(2);
  });
}

void FiscalVarlenModule2::getDailyTotals(clsDailyAcc& c, std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  read(u"0/", {Result, Exresult, SupressError_}, [&](const ReplyFields& fields) {
    fillNumbers(fields, {&c.VatA, &c.VatB, &c.VatC, &c.VatD, &c.VatE, &c.VatSum});
    c.LegalReceiptCount = fields.integer<std::int32_t>(6);
    c.illLegalReceiptCount = fields.integer<std::int32_t>(7);
    c.amtVoid = fields.number(8);
    c.amtRefund = fields.number(9);
    c.amtCancel = fields.number(10);
    c.amtPaymentType1 = fields.number(11);
    c.amtPaymentType2 = fields.number(12);
    c.amtPaymentType3 = fields.number(13);
    c.amtDiscount = fields.number(14);
    c.amtMarkUP = fields.number(15);
  });
}

// What the device does not tell has fixed values; programs know them.
void FiscalVarlenModule2::settingsRead(clsParam& c, std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  read(u"s/", {Result, Exresult, SupressError_}, [&](const ReplyFields& fields) {
    c.printerId = fields.integer<std::int16_t>(0);
    c.printerDescription = fields.text(1);
    c.cashierDesc = fields.text(2);
    c.drawerOpenonTotal = fields.integer<std::uint8_t>(3);
    c.printRECVATDetail = fields.integer<std::uint8_t>(4);
    c.printRECFooterComments = fields.integer<std::uint8_t>(5);
    c.printRECTopLogo = fields.integer<std::int16_t>(6);
    c.printerUSeCutter = fields.integer<std::uint8_t>(7);
    c.setUseLCDdisplay(fields.integer<std::uint8_t>(8));
    c.printRECPluDepartment = 1;
    c.printREConNoSale = 0;
    c.printRECBottomLogo = 0;
    c.printerDrawerID = 1;
    c.printerQuantityPrint = 0;
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
  status_->isFiscalFull = status_->isInPaidOut = status_->isInROA = status_->isFiscalNearFull = false;
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
