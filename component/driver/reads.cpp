#include "driver/fiscal_varlen_module2.h"
#include "state/fiscal_types.h"

// Outputs and records change only on success, and are read from the reply's own fields. A reply with too few fields
// raises badIndex after the available ones have been stored.
namespace mirvane {
namespace {

// Each line follows its size.
template <std::size_t N>
auto printedLinesRead(TextView command) {
  return [command](Driver& driver, PrintedLines<N, true> printed, Outcome outcome) {
    const Reply reply = driver.send(command, outcome);
    if (!reply.succeeded()) return;
    std::size_t i = 0;
    for (const auto& line : printed.lines) {
      line.size = reply.size(i++);
      line.text = reply.text(i++);
    }
  };
}

void fillNumbers(const Reply& reply, std::initializer_list<double*> numbers) {
  std::size_t i = 0;
  for (double* const number : numbers) *number = reply.number(i++);
}

// The register's two sales replies have different layouts.
auto salesRead(TextView code, std::size_t amount, std::size_t count) {
  return [=](Driver& driver, clsAccumulator& c, Outcome outcome) {
    const Reply reply = driver.send(Command(code).integer(c.Id), outcome);
    if (!reply.succeeded()) return;
    c.Desc = reply.text(0);
    c.Amount = reply.number(amount);
    c.Count = reply.number(count);
  };
}

auto textRead(TextView command, std::size_t field) {
  return [=](Driver& driver, Text& text, Outcome outcome) {
    const Reply reply = driver.send(command, outcome);
    if (reply.succeeded()) text = reply.text(field);
  };
}

void readDailyTotals(Driver& driver, clsDailyAcc& c, Outcome outcome) {
  const Reply reply = driver.send(u"0/", outcome);
  if (!reply.succeeded()) return;
  fillNumbers(reply, {&c.VatA, &c.VatB, &c.VatC, &c.VatD, &c.VatE, &c.VatSum});
  c.LegalReceiptCount = reply.integer<std::int32_t>(6);
  c.illLegalReceiptCount = reply.integer<std::int32_t>(7);
  c.amtVoid = reply.number(8);
  c.amtRefund = reply.number(9);
  c.amtCancel = reply.number(10);
  c.amtPaymentType1 = reply.number(11);
  c.amtPaymentType2 = reply.number(12);
  c.amtPaymentType3 = reply.number(13);
  c.amtDiscount = reply.number(14);
  c.amtMarkUP = reply.number(15);
}

// What the register does not report has fixed values, which programs rely on.
void readSettings(Driver& driver, clsParam& c, Outcome outcome) {
  const Reply reply = driver.send(u"s/", outcome);
  if (!reply.succeeded()) return;
  c.printerId = reply.integer<std::int16_t>(0);
  c.printerDescription = reply.text(1);
  c.cashierDesc = reply.text(2);
  c.drawerOpenonTotal = reply.integer<std::uint8_t>(3);
  c.printRECVATDetail = reply.integer<std::uint8_t>(4);
  c.printRECFooterComments = reply.integer<std::uint8_t>(5);
  c.printRECTopLogo = reply.integer<std::int16_t>(6);
  c.printerUSeCutter = reply.integer<std::uint8_t>(7);
  c.setUseLCDdisplay(reply.integer<std::uint8_t>(8));
  c.printRECPluDepartment = 1;
  c.printREConNoSale = 0;
  c.printRECBottomLogo = 0;
  c.printerDrawerID = 1;
  c.printerQuantityPrint = 0;
}

}  // namespace

clsStatus& FiscalVarlenModule2::refreshedStatus() {
  if (status == nullptr) status = std::make_shared<clsStatus>();
  const Reply::Flags& flags = session.flags();
  status->isDayOpen = flags.dayOpen;
  status->isTransactionOpen = flags.transactionOpen;
  status->isInPayment = flags.inPayment;
  status->isFlashNearFull = flags.flashNearFull;
  status->isFiscalFull = status->isInPaidOut = status->isInROA = status->isFiscalNearFull = false;
  status->isEuro = true;
  return *status;
}

void addReads(Rows& rows) {
  using namespace contract;
  rows.implement<getDate>(textRead(u"t/", 0))
      .implement<getTime>(textRead(u"t/", 1))
      .implement<getSerialNumber>([](Driver& driver, Text& sN, Outcome outcome) {
        const Reply reply = driver.send(u"a/", outcome);
        if (reply.succeeded()) sN = reply.text(0);
      })
      .implement<getHeader>(printedLinesRead<5>(u"h/"))
      .implement<getFooter>(printedLinesRead<3>(u"{/"))
      .implement<getVatCategories>([](Driver& driver, VatRates<true> rates, Outcome outcome) {
        const Reply reply = driver.send(u"e/", outcome);
        if (reply.succeeded()) fillNumbers(reply, {&rates.VatA, &rates.VatB, &rates.VatC, &rates.VatD, &rates.VatE});
      })
      .implement<transactionTotals>([](Driver& driver, clsTransTotal& c, Outcome outcome) {
        const Reply reply = driver.send(u"9/", outcome);
        if (!reply.succeeded()) return;
        fillNumbers(reply, {&c.VatA, &c.VatB, &c.VatC, &c.VatD, &c.VatE});
        c.receiptNumber = reply.integer<std::int32_t>(5);
        c.receiptTotalAmt = reply.number(6);
      })
      .implement<getSalesPerDepartment>(salesRead(u"D/", 3, 4))
      .implement<getSalesPerCategory>(salesRead(u"k/", 1, 2))
      .implement<getDailyTotals>(readDailyTotals)
      .implement<settingsRead>(readSettings)
      .implement<StatusRead>([](Driver& driver) {
        clsStatus& status = driver.refreshedStatus();
        status.FiscalType = FISCAL_VARLENFISCAL2;
        status.FiscalSN = driver.session.serialNumber().value_or(Text());
        return driver.status;
      })
      .implement<printerStatusRead>([](Driver& driver, Outcome outcome) {
        if (driver.send(u"?/", outcome).succeeded()) driver.refreshedStatus();
      });
}

}  // namespace mirvane
