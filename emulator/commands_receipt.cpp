#include "emulator/command.h"
#include "emulator/receipt_printer.h"

namespace mirvane::emulator {
namespace {

/// Why no receipt can go on: kOk when one is open.
Code receiptProblem(const FiscalState& fiscal) {
  if (fiscal.cashDocument) return fiscal.cashDocument->isIn ? Code::kCashInOpen : Code::kCashOutOpen;
  return fiscal.receipt ? Code::kOk : Code::kTransactionNotOpen;
}

Code readItem(const FiscalState& fiscal, const Fields& fields, Item& item) {
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
  if (item.description.find_first_not_of(u' ') == Text::npos) return Code::kBlankDescription;
  if (item.quantity <= 0) return Code::kQuantity;
  if (item.price < 0) return Code::kPrice;
  if (item.department < 1 || item.department > std::ssize(fiscal.departments)) return Code::kDepartment;
  while (item.vat < kVatCategories && fiscal.vatRates[item.vat] != fields.number(8)) ++item.vat;
  if (item.vat == kVatCategories) return Code::kVatRate;
  if (item.category < 1 || item.category > std::ssize(fiscal.categories)) return Code::kCategory;
  return Code::kOk;
}

Code addItem(Register& machine, const Fields& fields, ReplyFields&) {
  FiscalState& fiscal = machine.fiscal;
  Item item{};
  Code code = readItem(fiscal, fields, item);
  if (code != Code::kOk) return code;
  code = receiptProblem(fiscal);
  const bool opens = code == Code::kTransactionNotOpen && item.kind != ItemKind::kVoid;
  if (code != Code::kOk && !opens) return code;

  Receipt fresh(fiscal.lastReceiptNumber + 1);
  Receipt& receipt = opens ? fresh : *fiscal.receipt;
  code = receipt.add(item, fiscal.limits.receipt, fiscal.limits.day - sumOf(fiscal.day.gross));
  if (code != Code::kOk) return code;
  if (opens) {
    fiscal.receipt = std::move(fresh);
    fiscal.isDayOpen = true;
    ++fiscal.lastReceiptNumber;
    printReceiptStart(machine);
  }
  printItem(machine, item);
  return Code::kOk;
}

Code pay(Register& machine, const Fields& fields, ReplyFields&) {
  Code code = receiptProblem(machine.fiscal);
  if (code != Code::kOk) return code;
  const Payment payment{fields.whole(0), fields.text(1), fields.text(2), fields.number(3)};
  if (payment.number < 1 || payment.number > 4) return Code::kPaymentNumber;
  if (payment.amount < 0) return Code::kFieldRange;
  code = machine.fiscal.receipt->pay(payment);
  if (code == Code::kOk) printPayment(machine);
  return code;
}

Code tellRemaining(Register& machine, const Fields&, ReplyFields& reply) {
  const Code code = receiptProblem(machine.fiscal);
  if (code != Code::kOk) return code;
  const Receipt& receipt = *machine.fiscal.receipt;
  reply.amount(receipt.remaining()).amount(receipt.change()).amount(receipt.paid());
  return Code::kOk;
}

Code close(Register& machine, const Fields&, ReplyFields&) {
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
  fiscal.closeReceipt();
  return Code::kOk;
}

Code cancel(Register& machine, const Fields&, ReplyFields&) {
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

Code openCashDocument(Register& machine, const Fields& fields, ReplyFields&) {
  FiscalState& fiscal = machine.fiscal;
  const Code code = receiptProblem(fiscal);
  if (code == Code::kOk) return Code::kTransactionOpen;
  if (code != Code::kTransactionNotOpen) return code;
  if (fields.number(1) < 0) return Code::kFieldRange;
  if (fields.number(1) == 0) return Code::kPaymentAmount;
  if (fields.number(1) > fiscal.limits.receipt) return Code::kAmountLimit;
  fiscal.cashDocument = CashDocument{fields.bytes(0) == "0", fields.number(1)};
  fiscal.isDayOpen = true;
  printCashDocument(machine, fields.text(2));
  return Code::kOk;
}

}  // namespace

const std::vector<Command>& receiptCommands() {
  using namespace field;
  static const std::vector<Command> kCommands = {
      // operation, -, description, comment, -, quantity, price, department, VAT rate, category
      {"3",
       "",
       {text(1), text(0), text(30), text(30), text(0), quantity(), amount(), whole(3), amount(), whole(3)},
       true,
       addItem},
      {"5", "99", {whole(2), whole(1), whole(1), whole(1)}, false, tellRemaining},
      // number, description, second description, amount, card terminal, kind of card transaction
      {"5", "", {whole(2), text(30), text(30), amount(), wholeOrEmpty(3), wholeOrEmpty(3)}, true, pay},
      // direction, amount, description
      {"6", "0", {whole(1), amount(), text(30)}, true, openCashDocument},
      {"6", "1", {whole(1), amount(), text(30)}, true, openCashDocument},
      {"O", "1", {whole(1)}, true, close},
      {"O", "2", {whole(1)}, true, cancel},
  };
  return kCommands;
}

}  // namespace mirvane::emulator
