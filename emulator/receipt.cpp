#include "emulator/receipt.h"

#include <algorithm>
#include <numeric>

namespace mirvane::emulator {

Cents sumOf(const VatSums& sums) { return std::accumulate(sums.begin(), sums.end(), Cents{0}); }

Code Receipt::add(const Item& item, Cents receiptLimit, Cents dayLimit) {
  const Cents amount = item.amount();
  if (inPayment()) return Code::kInPayment;
  if (amount == 0) return Code::kZeroPrice;
  if (isFull()) return Code::kNoMoreSales;
  const bool isCategoryNegative = vatSums_[item.vat] + amount < 0;
  if (item.kind == ItemKind::kVoid && isCategoryNegative) return Code::kInvalidVoid;
  if (item.kind == ItemKind::kRefund && total() + amount < 0) return Code::kNegativeTotal;
  if (item.kind == ItemKind::kRefund && isCategoryNegative) return Code::kInvalidRefund;
  if (total() + amount > receiptLimit) return Code::kReceiptLimit;
  if (total() + amount > dayLimit) return Code::kDayLimit;
  vatSums_[item.vat] += amount;
  items_.push_back(item);
  latestAmount_ = amount;
  return Code::kOk;
}

Code Receipt::adjust(const Adjustment& adjustment, Cents receiptLimit, Cents dayLimit) {
  if (inPayment()) return Code::kInPayment;
  if (isFull()) return Code::kNoMoreSales;
  Adjustment taken = adjustment;
  if (taken.isOnItem) {
    const bool isPlaced =
        !items_.empty() && items_.back().kind == ItemKind::kSale && items_.back().department == taken.department;
    if (!isPlaced) return Code::kAdjustmentPlace;
    if (taken.shares != VatSums{}) return Code::kAdjustmentShares;
    if (taken.isDiscount && taken.amount > latestAmount_) return Code::kAdjustmentLimit;
    taken.item = items_.size() - 1;
    taken.shares[items_.back().vat] = taken.amount;
  }
  if (sumOf(taken.shares) != taken.amount) return Code::kAdjustmentShares;
  VatSums sums = vatSums_;
  for (std::size_t i = 0; i < kVatCategories; ++i) sums[i] += taken.isDiscount ? -taken.shares[i] : taken.shares[i];
  if (sumOf(sums) < 0) return Code::kAdjustmentInTotal;
  if (*std::min_element(sums.begin(), sums.end()) < 0) return Code::kAdjustmentInVat;
  if (!taken.isDiscount && sumOf(sums) > receiptLimit) return Code::kReceiptLimit;
  if (!taken.isDiscount && sumOf(sums) > dayLimit) return Code::kDayLimit;
  vatSums_ = sums;
  if (taken.isOnItem) latestAmount_ += taken.change();
  adjustments_.push_back(std::move(taken));
  return Code::kOk;
}

Code Receipt::paymentProblem(const Payment& payment) const {
  if (total() == 0) return Code::kZeroTotal;
  if (remaining() == 0) return Code::kMustClose;
  if (payment.amount == 0 && payment.number != 1) return Code::kPaymentAmount;
  return payment.isCard() && payment.amount > remaining() ? Code::kNoChange : Code::kOk;
}

Code Receipt::pay(const Payment& payment) {
  const Code code = paymentProblem(payment);
  if (code != Code::kOk) return code;
  Payment taken = payment;
  if (taken.amount == 0) taken.amount = remaining();
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
