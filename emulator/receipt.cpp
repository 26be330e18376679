#include "emulator/receipt.h"

#include <algorithm>
#include <numeric>

namespace mirvane::emulator {

Cents sumOf(const VatSums& sums) { return std::accumulate(sums.begin(), sums.end(), Cents{0}); }

Code Receipt::add(const Item& item, Cents receiptLimit, Cents dayLimit) {
  const Cents amount = item.amount();
  if (inPayment()) return Code::kInPayment;
  if (amount == 0) return Code::kZeroPrice;
  if (items_.size() == kMostItems) return Code::kNoMoreSales;
  const bool isCategoryNegative = vatSums_[item.vat] + amount < 0;
  if (item.kind == ItemKind::kVoid && isCategoryNegative) return Code::kInvalidVoid;
  if (item.kind == ItemKind::kRefund && total() + amount < 0) return Code::kNegativeTotal;
  if (item.kind == ItemKind::kRefund && isCategoryNegative) return Code::kInvalidRefund;
  if (total() + amount > receiptLimit) return Code::kReceiptLimit;
  if (total() + amount > dayLimit) return Code::kDayLimit;
  vatSums_[item.vat] += amount;
  items_.push_back(item);
  return Code::kOk;
}

Code Receipt::pay(const Payment& payment) {
  if (total() == 0) return Code::kZeroTotal;
  if (remaining() == 0) return Code::kMustClose;
  Payment taken = payment;
  if (taken.amount == 0) {
    if (taken.number != 1) return Code::kPaymentAmount;
    taken.amount = remaining();
  }
  if (taken.isCard() && taken.amount > remaining()) return Code::kNoChange;
  const Cents booked = std::min(taken.amount, remaining());
  change_ += taken.amount - booked;
  paid_ += booked;
  payments_.push_back(std::move(taken));
  return Code::kOk;
}

bool Receipt::isCardTaken() const {
  return std::any_of(payments_.begin(), payments_.end(), [](const Payment& payment) { return payment.isCard(); });
}

}  // namespace mirvane::emulator
