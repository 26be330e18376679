#include <algorithm>

#include "emulator/command.h"
#include "emulator/receipt_printer.h"

namespace mirvane::emulator {
namespace {

/// Why no receipt can go on: kOk when one is open.
Code receiptProblem(const FiscalState& fiscal) {
  const Code code = fiscal.documentProblem();
  if (code == Code::kTransactionOpen) return Code::kOk;
  return code == Code::kOk ? Code::kTransactionNotOpen : code;
}

Code readItem(FiscalState& fiscal, const Fields& fields, Item& item) {
  constexpr std::string_view kOperations = "SVR";
  const std::size_t operation = kOperations.find(fields.bytes(0));
  if (fields.bytes(0).size() != 1 || operation == std::string_view::npos) return Code::kSaleOperation;
  item = {static_cast<ItemKind>(operation),
          fields.text(2),
          fields.text(3),
          fields.number(5),
          fields.number(6),
          fields.whole(7),
          0,
          fields.whole(9)};
  if (isBlank(item.description)) return Code::kBlankDescription;
  if (item.quantity <= 0) return Code::kQuantity;
  if (item.price < 0) return Code::kPrice;
  if (!groupAt(fiscal.departments, item.department)) return Code::kDepartment;
  while (item.vat < kVatCategories && fiscal.vatRates[item.vat] != fields.number(8)) ++item.vat;
  if (item.vat == kVatCategories) return Code::kVatRate;
  if (!groupAt(fiscal.categories, item.category)) return Code::kCategory;
  return Code::kOk;
}

Code addItem(Register& machine, const Fields& fields, ReplyWriter&) {
  FiscalState& fiscal = machine.fiscal;
  Item item{};
  Code code = readItem(fiscal, fields, item);
  if (code != Code::kOk) return code;
  if (machine.journal.isClosing()) return Code::kClosing;
  code = receiptProblem(fiscal);
  const bool opens = code == Code::kTransactionNotOpen && item.kind != ItemKind::kVoid;
  if (code != Code::kOk && !opens) return code;
  if (opens && (code = machine.beginProblem()) != Code::kOk) return code;

  Receipt fresh(fiscal.lastReceiptNumber + 1);
  Receipt& receipt = opens ? fresh : *fiscal.receipt;
  code = receipt.add(item, fiscal.limits.receipt, fiscal.dayRest());
  if (code != Code::kOk) return code;
  if (opens) {
    fiscal.receipt = std::move(fresh);
    machine.openDay();
    ++fiscal.lastReceiptNumber;
    machine.journal.beginReceipt();
    printReceiptStart(machine);
  }
  printItem(machine, item);
  return Code::kOk;
}

Code adjust(Register& machine, const Fields& fields, ReplyWriter&) {
  FiscalState& fiscal = machine.fiscal;
  Code code = receiptProblem(fiscal);
  if (code != Code::kOk) return code;
  const int kind = fields.whole(0);
  if (kind < 1 || kind > 4) return Code::kAdjustmentKind;
  Adjustment adjustment{kind <= 2, kind % 2 == 1, fields.whole(1), fields.text(2), fields.text(3), fields.number(4)};
  for (std::size_t i = 0; i < kVatCategories; ++i) adjustment.shares[i] = fields.number(5 + i);
  const Cents least = *std::min_element(adjustment.shares.begin(), adjustment.shares.end());
  if (adjustment.amount < 0 || least < 0) return Code::kFieldRange;
  if (adjustment.amount == 0) return Code::kZeroAdjustment;
  if (!adjustment.isOnItem && adjustment.department != 1) return Code::kAdjustmentPlace;
  const Cents before = fiscal.receipt->total();
  code = fiscal.receipt->adjust(adjustment, fiscal.limits.receipt, fiscal.dayRest());
  if (code == Code::kOk) printAdjustment(machine, before);
  return code;
}

/// The payment is booked when the terminal has approved it.
Code payByTerminal(Register& machine, const Payment& payment) {
  if (!payment.isCard()) return Code::kPaymentNumber;
  const Code code = machine.fiscal.receipt->paymentProblem(payment);
  if (code != Code::kOk) return code;
  const auto terminal = machine.fiscal.cardTerminals.find(payment.terminal);
  const bool isActive = terminal != machine.fiscal.cardTerminals.end() && terminal->second.isEnabled;
  if (!isActive) return Code::kTerminalInactive;
  machine.cards.begin(payment, machine.elapsed());
  return Code::kCardUnderWay;
}

Code pay(Register& machine, const Fields& fields, ReplyWriter&) {
  Code code = receiptProblem(machine.fiscal);
  if (code != Code::kOk) return code;
  const Payment payment{fields.whole(0), fields.text(1), fields.text(2), fields.number(3), fields.whole(4)};
  if (payment.number < 1 || payment.number > 4) return Code::kPaymentNumber;
  if (payment.amount < 0 || payment.terminal < 0) return Code::kFieldRange;
  if (payment.terminal > 0) return payByTerminal(machine, payment);
  code = machine.fiscal.receipt->pay(payment);
  if (code == Code::kOk) printPayment(machine);
  return code;
}

Code tellRemaining(Register& machine, const Fields&, ReplyWriter& reply) {
  const Code code = receiptProblem(machine.fiscal);
  if (code != Code::kOk) return code;
  const Receipt& receipt = *machine.fiscal.receipt;
  reply.amount(receipt.remaining()).amount(receipt.change()).amount(receipt.paid());
  return Code::kOk;
}

Code close(Register& machine, const Fields&, ReplyWriter&) {
  FiscalState& fiscal = machine.fiscal;
  if (fiscal.cashDocument) {
    printCashDocumentEnd(machine);
    fiscal.closeCashDocument();
    return Code::kOk;
  }
  if (!fiscal.receipt) return Code::kTransactionNotOpen;
  if (fiscal.receipt->total() == 0) return Code::kZeroTotal;
  if (!fiscal.receipt->inPayment()) return Code::kNotInPayment;
  if (fiscal.receipt->remaining() > 0) return Code::kInPayment;
  printReceiptEnd(machine);
  if (fiscal.settings.opensDrawerOnTotal) ++machine.drawerOpenings;
  signReceipt(machine);
  fiscal.closeReceipt();
  return Code::kOk;
}

Code cancel(Register& machine, const Fields&, ReplyWriter&) {
  const Code code = receiptProblem(machine.fiscal);
  if (code != Code::kOk) return code;
  const Receipt& receipt = *machine.fiscal.receipt;
  if (receipt.inPayment() && receipt.remaining() == 0) return Code::kMustClose;
  // Cash can be handed back; a card has been charged.
  if (receipt.isCardTaken()) return Code::kPaymentTaken;
  printReceiptCancelled(machine);
  machine.fiscal.cancelReceipt();
  return Code::kOk;
}

Code openCashDocument(Register& machine, const Fields& fields, ReplyWriter&) {
  FiscalState& fiscal = machine.fiscal;
  Code code = fiscal.documentProblem();
  if (code != Code::kOk) return code;
  if (fields.number(1) < 0) return Code::kFieldRange;
  if (fields.number(1) == 0) return Code::kPaymentAmount;
  if (fields.number(1) > fiscal.limits.receipt) return Code::kAmountLimit;
  if (machine.journal.isClosing()) return Code::kClosing;
  if ((code = machine.beginProblem()) != Code::kOk) return code;
  const bool isIn = fields.bytes(0) == "0";
  if (machine.conditions.drawerLimit && !isIn && fields.number(1) > fiscal.day.cash()) return Code::kAmountLimit;
  fiscal.cashDocument = CashDocument{isIn, fields.number(1)};
  machine.openDay();
  printCashDocument(machine, fields.text(2));
  return Code::kOk;
}

}  // namespace

const std::vector<CommandRow>& receiptCommands() {
  using namespace field;
  static const std::vector<CommandRow> kCommands = {
      {"3",
       "",
       "item",
       {text("operation", 1), empty(), text("description", 30), text("comment", 30), empty(), quantity("quantity"),
        amount("price"), whole("department", 3), amount("VAT rate"), whole("category", 3)},
       true,
       addItem},
      {"4",
       "",
       "adjustment",
       {whole("kind", 2), whole("place", 3), text("description", Paper::kColumns), text("comment", Paper::kColumns),
        amount("amount"), amount("share A"), amount("share B"), amount("share C"), amount("share D"),
        amount("share E")},
       true,
       adjust},
      {"5",
       "99",
       "remaining amount",
       {selector(2), selector(), selector(), selector()},
       false,
       tellRemaining,
       {"remaining", "change", "paid"}},
      {"5",
       "",
       "payment",
       {whole("tender", 2), text("description", 30), text("second description", 30), amount("amount"),
        wholeOrEmpty("card terminal", 3), wholeOrEmpty("transaction", 3)},
       true,
       pay},
      {"6", "0", "cash in", {selector(), amount("amount"), text("description", 30)}, true, openCashDocument},
      {"6", "1", "cash out", {selector(), amount("amount"), text("description", 30)}, true, openCashDocument},
      {"O", "1", "close", {selector()}, true, close},
      {"O", "2", "cancel", {selector()}, true, cancel},
  };
  return kCommands;
}

}  // namespace mirvane::emulator
