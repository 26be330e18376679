#include "facade/fiscal_null_module.h"

#include <algorithm>

#include "interface/door.h"
#include "interface/driver_interface.h"
#include "link/port.h"
#include "state/message_catalogue.h"
#include "state/module_state.h"

namespace mirvane {
namespace {

// The row of a member that is only refused.
template <class Signature>
Member refusal(const Contract<Signature>& contract) {
  const auto isResult = [](const Parameter& parameter) { return parameter.name == "Result"; };
  const auto result = std::find_if(contract.parameters.begin(), contract.parameters.end(), isResult);
  const auto at = static_cast<std::size_t>(result - contract.parameters.begin());
  return contract.row([at](Object& /*self*/, CallArguments& arguments) -> Value {
    fiscalNullModule::refuse(detail::Expanded<Outcome>::take(arguments, at));
    return {};
  });
}

void clear(clsTransTotal& c) {
  c.VatA = c.VatB = c.VatC = c.VatD = c.VatE = c.receiptTotalAmt = 0;
  c.receiptNumber = 0;
}

void clear(clsAccumulator& c) {
  c.Desc.clear();
  c.Count = c.Amount = 0;
}

void clear(clsDailyAcc& c) {
  c.VatA = c.VatB = c.VatC = c.VatD = c.VatE = c.VatSum = 0;
  c.LegalReceiptCount = c.illLegalReceiptCount = 0;
  c.amtVoid = c.amtRefund = c.amtCancel = 0;
  c.amtPaymentType1 = c.amtPaymentType2 = c.amtPaymentType3 = 0;
  c.amtDiscount = c.amtMarkUP = 0;
}

// The row of a read that is refused: the record, where there is one, is left without earlier figures.
template <class Record>
Member refusedRead(const Contract<contract::WithRecord<Record>>& contract) {
  Member row = refusal(contract);
  row.implementation = [refuse = std::move(row.implementation)](Object& self, CallArguments& arguments) {
    if (const auto record = arguments.get<std::shared_ptr<Record>>(0)) clear(*record);
    return refuse(self, arguments);
  };
  return row;
}

template <class... Signatures>
void refuseAll(ClassBuilder<fiscalNullModule>& table, const Contract<Signatures>&... members) {
  (table.add(refusal(members)), ...);
}

}  // namespace

void fiscalNullModule::refuse(Outcome outcome) {
  outcome.take({link_result::kNoDevice, link_result::kNoDeviceText});
  if (outcome.SupressError_) return;
  showBox(outcome.Exresult, platform::kInformationSystemModal, langMessage(message::kBoxTitle));
}

Value fiscalNullModule::DisConnect_(Text& /*PORT*/, Outcome outcome) {
  outcome.Result = closePort();
  return {};
}

std::shared_ptr<clsStatus> fiscalNullModule::StatusRead() {
  if (status_ == nullptr) status_ = std::make_shared<clsStatus>();
  clsStatus& s = *status_;
  s.isFiscalFull = s.isDayOpen = s.isTransactionOpen = s.isInPayment = s.isInPaidOut = s.isInROA = false;
  s.isFlashNearFull = s.isFiscalNearFull = false;
  s.isEuro = true;
  return status_;
}

const ClassInfo& fiscalNullModule::describe() {
  static const ClassInfo info = [] {
    using namespace contract;
    using Driver = fiscalNullModule;
    ClassBuilder<Driver> table;
    refuseAll(table, SendCommand_, GetVersionInfo, Connect_);
    table.implement(contract::DisConnect_, &Driver::DisConnect_);
    refuseAll(table, ItemSale, ItemVoid, ItemRefund, Payment, FeedPaper, commentPrinterPrint, commentDisplayPrint,
              issueZReport, issueZReprintReport, issueXReport, DrawerOpen, CutPaper, executeCashIn, executeCashOut,
              VoidReceipt, getDate, getTime, getSerialNumber, getHeader, setHeader, getFooter, setFooter, setTempFooter,
              getVatCategories, setVatCategories, sentBitmapData, setReceiptBitmap, setReceiptBitmapSize, settingsRead,
              settingsWrite, setDepartment, setCategory);
    table.add(refusedRead(transactionTotals))
        .add(refusedRead(getSalesPerDepartment))
        .add(refusedRead(getSalesPerCategory))
        .add(refusedRead(getDailyTotals))
        .implement(contract::StatusRead, &Driver::StatusRead);
    refuseAll(table, printerStatusRead, setVATNumber, setServer, getServer, eftRead, eftWrite, eftTest);
    table.implement(logoLineDescLength, [](Driver& /*self*/) { return std::int16_t{0}; });
    for (const auto* classifier : {&bFixableError, &isErrorFixable, &bShouldRetry}) {
      table.implement(*classifier, [](Driver& /*self*/, std::int16_t& /*iErr*/) { return false; });
    }
    table.implement(isCriticalError, [](Driver& /*self*/, std::int16_t& /*iErr*/) { return true; });
    return throughDoor(table.build());
  }();
  return info;
}

}  // namespace mirvane
