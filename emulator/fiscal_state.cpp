#include "emulator/fiscal_state.h"

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

void book(SalesGroup& group, const Item& item) {
  group.amount += item.amount();
  group.count += item.kind == ItemKind::kSale ? 1 : -1;
}

}  // namespace

FiscalState::FiscalState()
    : header{{{u"ΠΑΝΤΟΠΩΛΕΙΟ ΔΟΚΙΜΩΝ", 3},
              {u"ΕΞΟΜΟΙΩΤΗΣ ΤΑΜΕΙΑΚΗΣ - ΔΕΝ ΕΙΝΑΙ ΑΠΟΔΕΙΞΗ", 1},
              {u"ΟΔΟΣ ΠΑΡΑΔΕΙΓΜΑΤΟΣ 12, 105 57 ΑΘΗΝΑ", 1},
              {u"ΤΗΛ. 210 0000000", 1},
              {u"ΑΦΜ 000000000  ΔΟΥ Α' ΑΘΗΝΩΝ", 1}}},
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
    book(departments[static_cast<std::size_t>(item.department) - 1], item);
    book(categories[static_cast<std::size_t>(item.category) - 1], item);
  }
  // Change goes back in cash, whatever was tendered.
  day.payments[0] -= receipt->change();
  for (const Payment& payment : receipt->payments()) {
    day.payments[payment.isCard() ? 1 : static_cast<std::size_t>(payment.number) - 1] += payment.amount;
  }
  ++day.receipts;
  receipt.reset();
}

void FiscalState::cancelReceipt() {
  day.cancelled += receipt->total();
  receipt.reset();
}

void FiscalState::closeCashDocument() {
  (cashDocument->isIn ? day.cashIn : day.cashOut) += cashDocument->amount;
  ++day.cashDocuments;
  cashDocument.reset();
}

std::uint8_t FiscalState::status() const {
  int status = 0;
  if (isDayOpen) status |= kDayOpen;
  if (receipt || cashDocument) status |= kTransactionOpen;
  if (receipt && receipt->inPayment()) status |= kInPayment;
  return static_cast<std::uint8_t>(status);
}

}  // namespace mirvane::emulator
