#include "driver/fiscal_varlen_module2.h"
#include "state/module_state.h"
#include "support/price_adjustments.h"

namespace mirvane {
namespace {

constexpr std::size_t kItemText = 30;
constexpr std::size_t kPrinterComment = 48;
constexpr std::size_t kDisplayComment = 20;

// The register may be waiting for a card terminal.
constexpr std::int16_t kPaymentSeconds = 180;

constexpr TextView kCloseReceipt = u"O/1/";
constexpr TextView kCancelReceipt = u"O/2/";
constexpr TextView kAskRemaining = u"5/99/1/1/1/";
constexpr TextView kAskTotals = u"9/";
constexpr std::size_t kReceiptTotal = 6;
constexpr int kRemainingAttempts = 3;
constexpr double kHalfCent = 0.005;

constexpr auto kAdjustment = method<std::shared_ptr<clsAdjust>(bool&)>("adjustment", {"onLastItem"});

// The row of an item line; `code` is the start of its command.
auto itemLine(TextView code) {
  using namespace contract;
  return [code](Driver& driver, Text& itemDesc, Real& itemQuan, Real& itemUnitPrice, Real& itemVatRate,
                Integer& itemDep, Outcome outcome, Text& itemComment, Integer& itemCategory) {
    const Reply reply = driver.send(Command(code)
                                        .text(itemDesc, kItemText)
                                        .text(itemComment, kItemText)
                                        .empty()
                                        .quantity(itemQuan)
                                        .amount(itemUnitPrice)
                                        .integer(itemDep)
                                        .amount(itemVatRate)
                                        .integer(itemCategory == 0 ? 1 : itemCategory),
                                    outcome);
    if (!reply.succeeded()) return;
    lastItem().department = itemDep;
    lastItem().amount = itemQuan * itemUnitPrice;
  };
}

// The row of a cash document, which is closed directly after it is opened.
auto cashDocument(TextView code) {
  using namespace contract;
  return [code](Driver& driver, Real& amount, Text& description, Outcome outcome) {
    if (driver.send(Command(code).amount(amount).text(description), outcome).succeeded()) {
      driver.send(kCloseReceipt, outcome);
    }
  };
}

void addNumberOrNothing(Command& command, std::int16_t number) {
  if (number > 0) {
    command.integer(number);
  } else {
    command.empty();
  }
}

void failUnanswered(Outcome outcome) { Session::fail({link_result::kNoAnswer, link_result::kNoAnswerText}, outcome); }

// Asks again if a reply does not contain the remaining amount: that does not mean that nothing remains. A field that is
// not a number counts as 0; the register, which knows better, then refuses to close. Returns nothing if the amount
// could not be read, which `outcome` says.
std::optional<double> askRemaining(Driver& driver, Outcome outcome) {
  for (int attempt = 0; attempt < kRemainingAttempts; ++attempt) {
    const Reply reply = driver.send(kAskRemaining, outcome);
    if (!reply.succeeded()) return std::nullopt;
    if (reply.count() > 0) return reply.number(0);
  }
  failUnanswered(outcome);
  return std::nullopt;
}

// The remaining amount before the payment: as the register reported it, or the receipt's total if it had no payment.
std::optional<double> remainedBefore(Driver& driver, std::optional<double> told, std::optional<bool> wasInPayment) {
  if (told || wasInPayment.value_or(true)) return told;
  const Reply totals = driver.session.sendSilently(kAskTotals);
  if (!totals.succeeded() || totals.count() <= kReceiptTotal) return std::nullopt;
  return totals.number(kReceiptTotal);
}

// Pays, and closes the receipt if nothing remains. The end of a card payment can be lost in transit; then the receipt
// shows whether the payment was booked.
void pay(Driver& driver, const Command& command, Outcome outcome, bool readsState) {
  const Session& session = driver.session;
  const auto told = session.remaining();
  const auto wasInPayment = session.isInPayment();
  const int looks = session.uncertainLooks();
  const Session::Payment payment = driver.session.pay(command, outcome, kPaymentSeconds);
  if (!payment.reply.succeeded()) return;
  const auto remaining = askRemaining(driver, outcome);
  if (!remaining) return;
  const bool isCertain = payment.isTold && session.uncertainLooks() == looks;
  if (*remaining > 0 && !isCertain) {
    const auto before = remainedBefore(driver, told, wasInPayment);
    if (!before || *remaining > *before - kHalfCent) failUnanswered(outcome);
  }
  if (*remaining > 0 || !driver.send(kCloseReceipt, outcome).succeeded()) return;
  // The journal needs the register's state after the receipt; the outcome stays that of the payment.
  if (readsState) driver.session.exchange(u"v/", OwnOutcome());
}

}  // namespace

void printComment(Driver& driver, const Text& text, std::int16_t size, Outcome outcome) {
  const Text comment = left(text, kPrinterComment);
  if (trim(comment).empty()) return outcome.set({});
  driver.send(Command(u"P/").text(comment).integer(size), outcome);
}

void addTransactions(Rows& rows) {
  using namespace contract;
  rows.implement<ItemSale>(itemLine(u"3/S//"))
      .implement<ItemVoid>(itemLine(u"3/V//"))
      .implement<ItemRefund>(itemLine(u"3/R//"))
      .implement<kAdjustment>([](Driver&, bool& onLastItem) {
        lastItem().isAdjusted = onLastItem;
        return std::make_shared<clsAdjust>();
      })
      .implement<DriverPayment>([](Driver& driver, Integer& paymentNumber, Text& paymentDesc, Real& paymentAmount,
                                   Integer& eftposNum, Integer& eftposType, Outcome outcome, Text& paymentDesc2,
                                   bool& bReadEJ, bool&) {
        Command command(u"5/");
        command.integer(paymentNumber).text(paymentDesc, kItemText).text(paymentDesc2, kItemText);
        command.amount(paymentAmount);
        addNumberOrNothing(command, eftposNum);
        addNumberOrNothing(command, eftposType);
        pay(driver, command, outcome, bReadEJ);
      })
      .implement<FeedPaper>(
          [](Driver& driver, Integer& lines, Outcome outcome) { driver.send(Command(u"F/").integer(lines), outcome); })
      .implement<commentPrinterPrint>(
          [](Driver& driver, Text& text, Integer& size, Outcome outcome) { printComment(driver, text, size, outcome); })
      .implement<commentDisplayPrint>([](Driver& driver, Integer& line, Text& text, Outcome outcome) {
        driver.send(Command(u"2/10/0/0/").integer(line).verbatim(left(text, kDisplayComment)), outcome);
      })
      .implement<DrawerOpen>([](Driver& driver, Outcome outcome) { driver.send(u"p/1/", outcome); })
      .implement<CutPaper>([](Driver& driver, bool& full, Outcome outcome) {
        driver.send(Command(u"p/2/").integer(full ? 1 : 0), outcome);
      })
      .implement<executeCashIn>(cashDocument(u"6/0/"))
      .implement<executeCashOut>(cashDocument(u"6/1/"))
      .implement<VoidReceipt>([](Driver& driver, Outcome outcome) {
        if (!driver.send(kCancelReceipt, outcome).succeeded()) driver.send(kCloseReceipt, outcome);
      });
}

}  // namespace mirvane
