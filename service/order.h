#pragma once

#include <optional>
#include <string>
#include <vector>

#include "http/json.h"
#include "text/code_page.h"

// What callers order, parsed and checked before anything is sent.
namespace mirvane::service {

using http::Json;
using Cents = std::int64_t;

/// A line of a receipt: an item, an adjustment or a comment.
struct Line {
  enum class Kind { kSale, kVoid, kRefund, kDiscount, kMarkUp, kComment };
  Kind kind = Kind::kSale;
  Text description, comment;
  /// In thousandths.
  std::int64_t quantity = 1000;
  /// The unit price, or the amount of an adjustment.
  Cents price = 0;
  double vat = 0;
  std::int16_t department = 1, category = 1;
  /// For an adjustment: of the subtotal instead of the line before.
  bool isOnSubtotal = false;
  /// Print size of a comment.
  std::int16_t size = 1;

  /// What it adds to the receipt.
  Cents amount() const;
};

struct Payment {
  /// "cash", "card" or "cheque".
  std::string type;
  Text description;
  /// Nothing: the remaining amount.
  std::optional<Cents> amount;
  /// The card terminal; 0 for none.
  std::int16_t terminal = 0;

  /// The register's number for this type.
  std::int16_t number() const { return type == "cash" ? 1 : type == "card" ? 2 : 3; }
};

struct Receipt {
  std::vector<Line> lines;
  std::vector<Text> footer;
  std::vector<Payment> payments;

  Cents total() const;
};

/// Money put into the drawer or taken out.
struct CashDocument {
  bool isIn = true;
  Cents amount = 0;
  Text description;
};

struct DisplayText {
  Text lines[2];
};

/// What is known of the register that will do it; empty before it has been asked.
struct Abilities {
  std::vector<double> vatRates;
  std::vector<std::int16_t> terminals;
  bool isKnown() const { return !vatRates.empty(); }
  bool operator==(const Abilities&) const = default;
};

/// All errors of an order, each with its place.
struct Faults {
  struct Fault {
    /// A JSON pointer.
    std::string where;
    std::string text;
  };
  void add(std::string where, std::string text) { all.push_back({std::move(where), std::move(text)}); }
  std::vector<Fault> all;
};

// Each parses what it can and adds errors to `faults`.
Receipt readReceipt(const Json& body, const Abilities& abilities, Faults& faults);
Payment readPayment(const Json& body, const std::string& where, const Abilities& abilities, Faults& faults);
CashDocument readCash(const Json& body, Faults& faults);
DisplayText readDisplay(const Json& body, Faults& faults);
/// An order without members.
void readNothing(const Json& body, Faults& faults);

/// The same text for all orders that mean the same: members sorted, on one line.
std::string canonical(const Json& body);

inline double euros(Cents amount) { return static_cast<double>(amount) / 100; }

}  // namespace mirvane::service
