#include "emulator/fiscal_state.h"

#include <algorithm>
#include <cctype>

#include "text/code_page.h"

namespace mirvane::emulator {
namespace {

constexpr int kDepartments = 40;
constexpr int kCategories = 20;

constexpr std::uint8_t kDayOpen = 0x02;
constexpr std::uint8_t kTransactionOpen = 0x04;
constexpr std::uint8_t kInPayment = 0x08;

Text numbered(TextView name, int number) {
  return Text(name).append(u" ").append(fromCodePage(std::to_string(number)));
}

template <class Group>
void clear(std::vector<Group>& groups) {
  for (SalesGroup& group : groups) group.amount = group.count = 0;
}

}  // namespace

FiscalState::FiscalState()
    : header{{{u"ΠΑΝΤΟΠΩΛΕΙΟ ΔΟΚΙΜΩΝ", 3},
              {u"ΕΞΟΜΟΙΩΤΗΣ ΤΑΜΕΙΑΚΗΣ - ΔΕΝ ΕΙΝΑΙ ΑΠΟΔΕΙΞΗ", 1},
              {u"ΟΔΟΣ ΠΑΡΑΔΕΙΓΜΑΤΟΣ 12, 105 57 ΑΘΗΝΑ", 1},
              {u"ΤΗΛ. 210 0000000", 1},
              {u"ΔΟΥ Α' ΑΘΗΝΩΝ", 1}}},
      footer{{{u"ΕΥΧΑΡΙΣΤΟΥΜΕ", 1}, {}, {}}} {
  for (int i = 1; i <= kDepartments; ++i) departments.push_back({{numbered(u"ΤΜΗΜΑ", i)}, 1});
  for (int i = 1; i <= kCategories; ++i) categories.push_back({numbered(u"ΚΑΤΗΓΟΡΙΑ", i)});
}

void FiscalState::closeReceipt() {
  for (std::size_t i = 0; i < kVatCategories; ++i) {
    day.gross[i] += receipt->vatSums()[i];
    day.vat[i] += includedVat(receipt->vatSums()[i], vatRates[i]);
  }
  for (const Item& item : receipt->items()) {
    if (item.kind == ItemKind::kVoid) day.voids -= item.amount();
    if (item.kind == ItemKind::kRefund) day.refunds -= item.amount();
    book(item, item.amount(), item.kind == ItemKind::kSale ? 1 : -1);
  }
  for (const Adjustment& adjustment : receipt->adjustments()) {
    (adjustment.isDiscount ? day.discounts : day.markUps) += adjustment.amount;
    if (adjustment.isOnItem) book(receipt->items()[adjustment.item], adjustment.change(), 0);
  }
  // Change is given in cash, whatever was tendered.
  day.payments[0] -= receipt->change();
  for (const Payment& payment : receipt->payments()) {
    day.payments[payment.isCard() ? 1 : static_cast<std::size_t>(payment.number) - 1] += payment.amount;
  }
  ++day.receipts;
  endReceipt();
}

void FiscalState::book(const Item& item, Cents amount, int count) {
  for (SalesGroup* group :
       {static_cast<SalesGroup*>(groupAt(departments, item.department)), groupAt(categories, item.category)}) {
    group->amount += amount;
    group->count += count;
  }
}

void FiscalState::endReceipt() {
  receipt.reset();
  nextFooter.reset();
}

void FiscalState::cancelReceipt() {
  day.cancelled += receipt->total();
  endReceipt();
}

void FiscalState::closeCashDocument() {
  (cashDocument->isIn ? day.cashIn : day.cashOut) += cashDocument->amount;
  ++day.cashDocuments;
  cashDocument.reset();
}

void FiscalState::closeDay() {
  ++closures;
  grandTotal += sumOf(day.gross);
  day = {};
  clear(departments);
  clear(categories);
  lastReceiptNumber = 0;
  isDayOpen = false;
}

Code FiscalState::documentProblem() const {
  if (cashDocument) return cashDocument->isIn ? Code::kCashInOpen : Code::kCashOutOpen;
  return receipt ? Code::kTransactionOpen : Code::kOk;
}

Code FiscalState::dayProblem() const {
  const Code code = documentProblem();
  return code == Code::kOk && isDayOpen ? Code::kDayOpen : code;
}

std::uint8_t FiscalState::status() const {
  int status = 0;
  if (isDayOpen) status |= kDayOpen;
  if (receipt || cashDocument) status |= kTransactionOpen;
  if (receipt && receipt->inPayment()) status |= kInPayment;
  return static_cast<std::uint8_t>(status);
}

bool isSerialNumber(std::string_view text) {
  const auto isPart = [](unsigned char c) { return c < 0x80 && std::isalnum(c); };
  return !text.empty() && text.size() <= 20 && std::all_of(text.begin(), text.end(), isPart);
}

}  // namespace mirvane::emulator
