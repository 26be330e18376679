#pragma once

#include <array>
#include <vector>

#include "emulator/money.h"
#include "emulator/result_code.h"
#include "text/text.h"

namespace mirvane::emulator {

/// VAT categories A to E, counted from 0.
constexpr std::size_t kVatCategories = 5;
using VatSums = std::array<Cents, kVatCategories>;

Cents sumOf(const VatSums& sums);

enum class ItemKind { kSale, kVoid, kRefund };

struct Item {
  ItemKind kind;
  Text description, comment;
  Thousandths quantity;
  Cents price;
  int department;
  std::size_t vat;
  int category;

  /// What the line adds to the receipt; negative for a void or a refund.
  Cents amount() const { return kind == ItemKind::kSale ? lineAmount(quantity, price) : -lineAmount(quantity, price); }
};

/// A discount or a mark-up on the latest item or on the subtotal.
struct Adjustment {
  bool isDiscount;
  bool isOnItem;
  /// Department that the latest item must have, for an adjustment of an item.
  int department;
  Text description, comment;
  /// Above 0.
  Cents amount;
  /// The share of each VAT category, none below 0; all 0 for an item, whose category takes the whole amount.
  VatSums shares{};
  /// Index of the item that it applies to.
  std::size_t item = 0;

  /// What it adds to the receipt.
  Cents change() const { return isDiscount ? -amount : amount; }
};

struct Payment {
  /// 1 cash, 2 and 4 card, 3 cheque.
  int number;
  Text description, secondDescription;
  /// As tendered; a cash payment of 0 pays the remaining amount.
  Cents amount;
  /// The card terminal; 0 for none.
  int terminal = 0;
  /// The number with which the terminal approved it.
  int approval = 0;

  bool isCard() const { return number == 2 || number == 4; }
};

/// An open receipt. Prices include VAT. A refused operation changes nothing.
class Receipt {
 public:
  static constexpr std::size_t kMostLines = 500;

  explicit Receipt(int number = 0) : number_(number) {}

  /// A void cancels what this receipt sold, so no VAT category may fall below zero; a refund may not make a category or
  /// the whole receipt negative. The limits are for the total and for the rest of the day.
  Code add(const Item& item, Cents receiptLimit, Cents dayLimit);
  Code adjust(const Adjustment& adjustment, Cents receiptLimit, Cents dayLimit);
  /// More than the remaining amount gives change, except on a card. Once started, payment ends only when all is paid.
  Code pay(const Payment& payment);
  /// Why `pay` would refuse; kOk if it would not.
  Code paymentProblem(const Payment& payment) const;

  int number() const { return number_; }
  const std::vector<Item>& items() const { return items_; }
  const std::vector<Adjustment>& adjustments() const { return adjustments_; }
  const std::vector<Payment>& payments() const { return payments_; }
  const VatSums& vatSums() const { return vatSums_; }
  Cents total() const { return sumOf(vatSums_); }
  Cents paid() const { return paid_; }
  Cents remaining() const { return total() - paid_; }
  Cents change() const { return change_; }
  bool inPayment() const { return !payments_.empty(); }
  bool isCardTaken() const;
  bool isFull() const { return items_.size() + adjustments_.size() >= kMostLines; }

  /// Passes everything that survives a power cut to `visit(name, member)`.
  template <class Visitor>
  void visitMemory(Visitor&& visit) {
    visit("number", number_);
    visit("items", items_);
    visit("latestAmount", latestAmount_);
    visit("adjustments", adjustments_);
    visit("payments", payments_);
    visit("vatSums", vatSums_);
    visit("paid", paid_);
    visit("change", change_);
  }

 private:
  int number_;
  std::vector<Item> items_;
  /// The latest item's amount including its adjustments.
  Cents latestAmount_ = 0;
  std::vector<Adjustment> adjustments_;
  std::vector<Payment> payments_;
  VatSums vatSums_{};
  Cents paid_ = 0;
  Cents change_ = 0;
};

}  // namespace mirvane::emulator
