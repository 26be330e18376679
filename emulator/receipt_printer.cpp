#include "emulator/receipt_printer.h"

#include <algorithm>

#include "text/code_page.h"

namespace mirvane::emulator {
namespace {

constexpr TextView kVatLetters = u"ΑΒΓΔΕ";

Text withComma(std::string digits) {
  std::replace(digits.begin(), digits.end(), '.', ',');
  return fromCodePage(digits);
}

Text withLetter(Cents amount, std::size_t vat) { return printedAmount(amount) + u" " + kVatLetters[vat]; }

TextView paymentName(const Payment& payment) {
  constexpr TextView kNames[] = {u"ΜΕΤΡΗΤΑ", u"ΚΑΡΤΑ", u"ΕΠΙΤΑΓΗ", u"ΚΑΡΤΑ"};
  return payment.description.empty() ? kNames[payment.number - 1] : TextView(payment.description);
}

/// What the card terminal tells of an approved payment.
void printSlip(Register& machine, const Payment& payment) {
  machine.paper.pair(u"  EFTPOS " + paddedNumber(payment.terminal, 2) + u" " +
                         machine.fiscal.cardTerminals.at(payment.terminal).description,
                     fromCodePage("TID " + terminalIdentifier(payment.terminal)) + u"  ");
  machine.paper.pair(u"  ΣΥΝΑΛΛΑΓΗ ΕΓΚΡΙΘΗΚΕ", u"ΑΡ. " + paddedNumber(payment.approval, 6) + u"  ");
}

void printLine(Paper& paper, const PrintedLine& line) {
  if (!line.text.empty()) paper.sized(line.text, line.size, true);
}

void printFooter(Register& machine) {
  const FiscalState& fiscal = machine.fiscal;
  if (fiscal.receipt && fiscal.nextFooter) {
    for (const Text& line : *fiscal.nextFooter) printLine(machine.paper, {line});
  } else {
    for (const PrintedLine& line : fiscal.footer) printLine(machine.paper, line);
  }
}

void printEnd(Register& machine, TextView lastLine) {
  const platform::LocalTime now = machine.clock();
  machine.paper.pair(printedDate(now) + u" " + printedTime(now), fromCodePage(machine.fiscal.serialNumber));
  if (machine.fiscal.settings.printsFooter) printFooter(machine);
  machine.paper.centred(lastLine);
  machine.paper.feed(2);
  if (machine.fiscal.receipt && machine.fiscal.settings.usesCutter) machine.paper.cut(true);
}

void printVatAnalysis(Register& machine) {
  const FiscalState& fiscal = machine.fiscal;
  for (std::size_t i = 0; i < kVatCategories; ++i) {
    const Cents gross = fiscal.receipt->vatSums()[i];
    if (gross == 0) continue;
    const Cents vat = includedVat(gross, fiscal.vatRates[i]);
    machine.paper.pair(printedVat(fiscal, i),
                       u"ΚΑΘΑΡΗ ΑΞΙΑ " + printedAmount(gross - vat) + u"  ΦΟΡΟΣ " + printedAmount(vat));
  }
}

}  // namespace

Text printedAmount(Cents value) { return withComma(formatCents(value)); }

Text paddedNumber(int value, std::size_t width) {
  const std::string digits = std::to_string(value);
  return Text(width - std::min(width, digits.size()), u'0') + fromCodePage(digits);
}

Text printedDate(const platform::LocalTime& time) {
  return paddedNumber(time.day, 2) + u"-" + paddedNumber(time.month, 2) + u"-" + paddedNumber(time.year, 4);
}

Text printedTime(const platform::LocalTime& time) {
  return paddedNumber(time.hour, 2) + u":" + paddedNumber(time.minute, 2) + u":" + paddedNumber(time.second, 2);
}

Text printedVat(const FiscalState& fiscal, std::size_t category) {
  return Text(u"ΦΠΑ ") + kVatLetters[category] + u" " + withComma(formatFixed(fiscal.vatRates[category], 2)) + u"%";
}

void printHeader(Paper& paper, const FiscalState& fiscal) {
  for (const PrintedLine& line : fiscal.header) printLine(paper, line);
  paper.centred(u"ΑΦΜ " + fromCodePage(fiscal.vatNumber));
}

void beginDocument(Register& machine, Document::Kind kind) {
  Document document;
  document.kind = kind;
  document.closure = machine.fiscal.closures + 1;
  document.time = machine.clock();
  if (kind == Document::Kind::kReceipt) document.number = machine.fiscal.receipt->number();
  document.vatRates = machine.fiscal.vatRates;
  machine.roll.begin(std::move(document));
}

void printReceiptStart(Register& machine) {
  beginDocument(machine, Document::Kind::kReceipt);
  printHeader(machine.paper, machine.fiscal);
  machine.paper.centred(u"ΝΟΜΙΜΗ ΑΠΟΔΕΙΞΗ - ΕΝΑΡΞΗ");
  machine.paper.pair(u"ΑΠΟΔΕΙΞΗ " + paddedNumber(machine.fiscal.receipt->number(), 4),
                     u"Ζ " + paddedNumber(machine.fiscal.closures + 1, 4));
  const Text& cashier = machine.fiscal.settings.cashier;
  if (!cashier.empty()) machine.paper.line(u"ΧΕΙΡΙΣΤΗΣ " + cashier);
  machine.paper.rule();
}

void printItem(Register& machine, const Item& item) {
  if (item.kind != ItemKind::kSale) machine.paper.line(item.kind == ItemKind::kVoid ? u"ΑΛΛΑΓΗ" : u"ΕΠΙΣΤΡΟΦΗ");
  if (item.quantity != 1000) {
    machine.paper.line(u"  " + withComma(formatFixed(item.quantity, 3)) + u" x " + printedAmount(item.price));
  }
  machine.paper.pair(item.description, withLetter(item.amount(), item.vat));
  if (!item.comment.empty()) machine.paper.line(u"  " + item.comment);
}

void printAdjustment(Register& machine, Cents before) {
  const Receipt& receipt = *machine.fiscal.receipt;
  const Adjustment& adjustment = receipt.adjustments().back();
  if (!adjustment.isOnItem) machine.paper.pair(u"ΥΠΟΣΥΝΟΛΟ", printedAmount(before) + u"  ");
  const TextView name = adjustment.isDiscount ? u"ΕΚΠΤΩΣΗ" : u"ΑΥΞΗΣΗ";
  machine.paper.pair(adjustment.description.empty() ? name : TextView(adjustment.description),
                     adjustment.isOnItem ? withLetter(adjustment.change(), receipt.items()[adjustment.item].vat)
                                         : printedAmount(adjustment.change()) + u"  ");
  if (!adjustment.comment.empty()) machine.paper.line(u"  " + adjustment.comment);
}

void printPayment(Register& machine) {
  const Receipt& receipt = *machine.fiscal.receipt;
  if (receipt.payments().size() == 1) {
    machine.paper.rule();
    machine.paper.pair(u"ΣΥΝΟΛΟ", printedAmount(receipt.total()) + u"  ");
  }
  const Payment& payment = receipt.payments().back();
  machine.paper.pair(paymentName(payment), printedAmount(payment.amount) + u"  ");
  if (!payment.secondDescription.empty()) machine.paper.line(u"  " + payment.secondDescription);
  if (payment.terminal > 0) printSlip(machine, payment);
}

void printReceiptEnd(Register& machine) {
  const Receipt& receipt = *machine.fiscal.receipt;
  if (receipt.change() > 0) machine.paper.pair(u"ΡΕΣΤΑ", printedAmount(receipt.change()) + u"  ");
  machine.paper.rule();
  if (machine.fiscal.settings.printsVatDetail) printVatAnalysis(machine);
  printEnd(machine, u"ΝΟΜΙΜΗ ΑΠΟΔΕΙΞΗ - ΛΗΞΗ");
  machine.roll.end(Document::State::kClosed, receipt);
}

void signReceipt(Register& machine) {
  const Receipt& receipt = *machine.fiscal.receipt;
  const platform::LocalTime now = machine.clock();
  machine.journal.signReceipt(paddedNumber(receipt.number(), 4) + u" " + printedDate(now) + u" " + printedTime(now) +
                              u" " + printedAmount(receipt.total()));
}

void printReceiptCancelled(Register& machine) {
  machine.paper.rule();
  machine.paper.pair(u"ΑΚΥΡΩΘΗΚΕ", printedAmount(machine.fiscal.receipt->total()) + u"  ");
  printEnd(machine, u"ΑΚΥΡΩΜΕΝΗ ΑΠΟΔΕΙΞΗ - ΛΗΞΗ");
  machine.roll.end(Document::State::kCancelled, machine.fiscal.receipt);
}

void printCashDocument(Register& machine, TextView description) {
  const CashDocument& document = *machine.fiscal.cashDocument;
  beginDocument(machine, document.isIn ? Document::Kind::kCashIn : Document::Kind::kCashOut);
  printHeader(machine.paper, machine.fiscal);
  machine.paper.centred(document.isIn ? u"ΚΑΤΑΘΕΣΗ" : u"ΑΝΑΛΗΨΗ");
  machine.paper.rule();
  machine.paper.pair(description, printedAmount(document.amount) + u"  ");
}

void printCashDocumentEnd(Register& machine) {
  machine.paper.rule();
  printEnd(machine, u"ΠΑΡΑΣΤΑΤΙΚΟ ΜΗ ΦΟΡΟΛΟΓΙΚΟ");
  machine.roll.end(Document::State::kClosed);
}

}  // namespace mirvane::emulator
