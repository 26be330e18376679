#include "service/order.h"

#include <algorithm>
#include <cmath>

#include "text/text.h"

namespace mirvane::service {
namespace {

constexpr std::size_t kItemText = 30, kPrinted = 48, kShown = 20;
constexpr double kMostEuros = 999'999.99;
constexpr std::size_t kMostLines = 500, kMostPayments = 20;
constexpr const char* kLineKinds[] = {"sale", "void", "refund", "discount", "markup", "comment"};

/// The members of one object, each asked for by its name; what is left over is unknown.
class Members {
 public:
  Members(const Json& object, std::string where, Faults& faults)
      : object_(object), where_(std::move(where)), faults_(faults) {
    if (!object.as<Json::Object>()) faults.add(where_, "an object is expected");
  }
  Members(const Members&) = delete;
  Members& operator=(const Members&) = delete;
  ~Members() {
    const auto* members = object_.as<Json::Object>();
    for (std::size_t i = 0; members && i < members->size(); ++i) {
      const std::string& name = (*members)[i].name;
      if (std::ranges::find(asked_, name) == asked_.end()) fault(name, "unknown");
    }
  }

  const Json* find(const char* name) {
    asked_.emplace_back(name);
    const Json* value = object_.find(name);
    return value && !value->isNull() ? value : nullptr;
  }
  void fault(const std::string& name, const std::string& text) { faults_.add(where_ + "/" + name, text); }

  /// Printed as it is, but for what the register's code page lacks.
  Text text(const char* name, std::size_t longest, bool isNeeded = false) {
    const Json* value = find(name);
    if (!value && !isNeeded) return {};
    const auto* bytes = value ? value->as<std::string>() : nullptr;
    return bytes ? checked(*bytes, name, longest, isNeeded) : (fault(name, "a text is expected"), Text());
  }
  Text checked(const std::string& bytes, const std::string& name, std::size_t longest, bool isNeeded) {
    Text text = fromUtf8(bytes);
    bool isReplaced = false;
    toCodePage(text, &isReplaced);
    const bool hasControls = std::ranges::any_of(text, [](char16_t c) { return c < u' '; });
    if (text.size() > longest) {
      fault(name, "at most " + std::to_string(longest) + " characters");
    } else if (isReplaced || hasControls) {
      fault(name, "a character that the register cannot print");
    } else if (isNeeded && trim(text).empty()) {
      fault(name, "must not be blank");
    }
    return text;
  }
  /// With at most so many decimals, as a whole number of the last one.
  std::optional<std::int64_t> decimal(const char* name, int decimals, double least, double most, bool isNeeded) {
    const Json* value = find(name);
    if (!value && !isNeeded) return std::nullopt;
    const auto* number = value ? value->as<double>() : nullptr;
    const double scaled = number ? *number * std::pow(10, decimals) : 0;
    if (!number || *number < least || *number > most) {
      fault(name, "a number from " + Json(least).dump() + " to " + Json(most).dump() + " is expected");
    } else if (std::abs(scaled - std::round(scaled)) > 1e-4) {
      fault(name, "at most " + std::to_string(decimals) + " decimals");
    } else {
      return std::llround(scaled);
    }
    return std::nullopt;
  }
  std::int16_t whole(const char* name, std::int16_t otherwise, int least, int most) {
    return static_cast<std::int16_t>(decimal(name, 0, least, most, false).value_or(otherwise));
  }
  /// The index of one of `words`; 0 when the member is missing and may be.
  template <std::size_t N>
  std::size_t word(const char* name, const char* const (&words)[N], bool isNeeded) {
    const Json* value = find(name);
    if (!value && !isNeeded) return 0;
    const auto* text = value ? value->as<std::string>() : nullptr;
    const auto* found = text ? std::find(std::begin(words), std::end(words), *text) : std::end(words);
    if (found != std::end(words)) return static_cast<std::size_t>(found - std::begin(words));
    std::string all;
    for (const char* one : words) all.append(all.empty() ? "" : ", ").append(one);
    fault(name, "one of these is expected: " + all);
    return 0;
  }
  /// Calls `take` with each element and its place.
  template <class Take>
  void each(const char* name, std::size_t least, std::size_t most, Take take) {
    const Json* value = find(name);
    if (!value && least == 0) return;
    const auto* list = value ? value->as<Json::List>() : nullptr;
    if (!list || list->size() < least || list->size() > most) {
      return fault(name, "a list of " + std::to_string(least) + " to " + std::to_string(most) + " is expected");
    }
    for (std::size_t i = 0; i < list->size(); ++i) take((*list)[i], std::string(name) + "/" + std::to_string(i));
  }
  const std::string& where() const { return where_; }

 private:
  const Json& object_;
  const std::string where_;
  Faults& faults_;
  std::vector<std::string> asked_;
};

Cents halfUp(std::int64_t value, std::int64_t divisor) { return (value + divisor / 2) / divisor; }

/// Its share of what it is on, or what it comes to by itself.
Cents adjustmentAmount(Members& members, Cents of) {
  const auto amount = members.decimal("amount", 2, 0.01, kMostEuros, false);
  const auto percent = members.decimal("percent", 2, 0.01, 1000, false);
  if (amount.has_value() == percent.has_value()) members.fault("amount", "either this or percent is expected");
  return amount ? *amount : percent ? halfUp(of * *percent, 10'000) : 0;
}

/// `receipt` is what stands above it.
Line readLine(const Json& json, const std::string& where, const Receipt& receipt, const Abilities& abilities,
              Faults& faults) {
  Members members(json, where, faults);
  Line line;
  line.kind = static_cast<Line::Kind>(members.word("type", kLineKinds, false));
  if (line.kind == Line::Kind::kComment) {
    line.description = members.text("text", kPrinted, true);
    line.size = members.whole("size", 1, 1, 4);
    return line;
  }
  const bool isAdjustment = line.kind == Line::Kind::kDiscount || line.kind == Line::Kind::kMarkUp;
  line.description = members.text("description", kItemText, !isAdjustment);
  line.comment = members.text("comment", kItemText);
  if (isAdjustment) {
    constexpr const char* kPlaces[] = {"line", "subtotal"};
    line.isOnSubtotal = members.word("on", kPlaces, false) == 1;
    const bool isBehindSale = !receipt.lines.empty() && receipt.lines.back().kind == Line::Kind::kSale;
    if (!line.isOnSubtotal && !isBehindSale) members.fault("on", "stands behind no sale");
    const Cents of = line.isOnSubtotal ? receipt.total() : isBehindSale ? receipt.lines.back().amount() : 0;
    line.price = adjustmentAmount(members, of);
    if (line.kind == Line::Kind::kDiscount && line.price > of) members.fault("amount", "more than it is taken off");
    return line;
  }
  line.quantity = members.decimal("quantity", 3, 0.001, 99'999, false).value_or(1000);
  line.price = members.decimal("price", 2, 0, kMostEuros, true).value_or(0);
  line.vat = static_cast<double>(members.decimal("vat", 2, 0, 100, true).value_or(0)) / 100;
  line.department = members.whole("department", 1, 1, 999);
  line.category = members.whole("category", 1, 1, 999);
  if (abilities.isKnown() && std::ranges::find(abilities.vatRates, line.vat) == abilities.vatRates.end()) {
    members.fault("vat", "the register has no such VAT rate");
  }
  return line;
}

bool isVatNumber(const std::string& digits) {
  if (digits.size() != 9 || !std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; })) return false;
  int sum = 0;
  for (std::size_t i = 0; i < 8; ++i) sum = (sum + digits[i] - '0') * 2;
  return sum % 11 % 10 == digits[8] - '0';
}

void checkPayments(const Receipt& receipt, Faults& faults) {
  Cents rest = receipt.total();
  for (std::size_t i = 0; i < receipt.payments.size(); ++i) {
    const Payment& payment = receipt.payments[i];
    const std::string where = "/payments/" + std::to_string(i) + "/amount";
    const Cents amount = payment.amount.value_or(rest);
    if (rest <= 0) {
      faults.add(where, "nothing is left to pay");
    } else if (payment.type == "card" && amount > rest) {
      faults.add(where, "a card gives no change");
    }
    rest -= amount;
  }
}

}  // namespace

Cents Line::amount() const {
  switch (kind) {
    case Kind::kSale:
      return halfUp(quantity * price, 1000);
    case Kind::kVoid:
    case Kind::kRefund:
      return -halfUp(quantity * price, 1000);
    case Kind::kDiscount:
      return -price;
    case Kind::kMarkUp:
      return price;
    case Kind::kComment:
      break;
  }
  return 0;
}

Cents Receipt::total() const {
  Cents sum = 0;
  for (const Line& line : lines) sum += line.amount();
  return sum;
}

Payment readPayment(const Json& body, const std::string& where, const Abilities& abilities, Faults& faults) {
  constexpr const char* kTypes[] = {"cash", "card", "cheque"};
  Members members(body, where, faults);
  Payment payment;
  payment.type = kTypes[members.word("type", kTypes, true)];
  payment.description = members.text("description", kItemText);
  payment.amount = members.decimal("amount", 2, 0.01, kMostEuros, false);
  payment.terminal = members.whole("terminal", 0, 0, 99);
  if (payment.terminal == 0) return payment;
  const bool isThere = std::ranges::find(abilities.terminals, payment.terminal) != abilities.terminals.end();
  if (payment.type != "card") members.fault("terminal", "for cards alone");
  if (abilities.isKnown() && !isThere) members.fault("terminal", "the register has no such card terminal");
  return payment;
}

Receipt readReceipt(const Json& body, const Abilities& abilities, Faults& faults) {
  Receipt receipt;
  Members members(body, "", faults);
  members.each("lines", 1, kMostLines, [&](const Json& line, const std::string& name) {
    receipt.lines.push_back(readLine(line, "/" + name, receipt, abilities, faults));
    if (receipt.total() < 0) members.fault(name, "takes the receipt below 0");
  });
  if (!receipt.lines.empty() && receipt.lines.front().kind == Line::Kind::kVoid) {
    members.fault("lines/0", "there is nothing to take back");
  }
  if (const Text number = members.text("vatNumber", kItemText); !number.empty()) {
    if (!isVatNumber(toUtf8(number))) members.fault("vatNumber", "no VAT number: nine digits, the last one a check");
    Line line;
    line.kind = Line::Kind::kComment;
    line.description = u"ΑΦΜ ΠΕΛΑΤΗ: " + number;
    receipt.lines.push_back(line);
  }
  members.each("footer", 0, 3, [&](const Json& line, const std::string& name) {
    const auto* text = line.as<std::string>();
    if (!text) return members.fault(name, "a text is expected");
    receipt.footer.push_back(members.checked(*text, name, kPrinted, false));
  });
  members.each("payments", 0, kMostPayments, [&](const Json& payment, const std::string& name) {
    receipt.payments.push_back(readPayment(payment, "/" + name, abilities, faults));
  });
  const auto total = members.decimal("total", 2, 0, kMostEuros, false);
  if (!faults.all.empty()) return receipt;
  const auto isItem = [](const Line& line) {
    return line.kind == Line::Kind::kSale || line.kind == Line::Kind::kRefund;
  };
  if (std::ranges::none_of(receipt.lines, isItem)) {
    members.fault("lines", "nothing is sold");
  } else if (receipt.total() == 0) {
    members.fault("lines", "the receipt comes to 0");
  } else if (total && *total != receipt.total()) {
    members.fault("total", "the lines come to " + Json(euros(receipt.total())).dump());
  }
  if (faults.all.empty()) checkPayments(receipt, faults);
  return receipt;
}

CashDocument readCash(const Json& body, Faults& faults) {
  constexpr const char* kDirections[] = {"in", "out"};
  Members members(body, "", faults);
  CashDocument cash;
  cash.isIn = members.word("direction", kDirections, true) == 0;
  cash.amount = members.decimal("amount", 2, 0.01, kMostEuros, true).value_or(0);
  cash.description = members.text("description", kItemText);
  return cash;
}

DisplayText readDisplay(const Json& body, Faults& faults) {
  DisplayText display;
  Members members(body, "", faults);
  members.each("lines", 1, 2, [&](const Json& line, const std::string& name) {
    const auto* text = line.as<std::string>();
    const Text shown = text ? members.checked(*text, name, kShown, false) : Text();
    if (!text || shown.find(u'/') != Text::npos) members.fault(name, "a text without \"/\" is expected");
    display.lines[name.back() - '0'] = shown;
  });
  return display;
}

void readNothing(const Json& body, Faults& faults) { const Members members(body, "", faults); }

std::string canonical(const Json& body) {
  const auto sorted = [](const Json& value, const auto& self) -> Json {
    if (const auto* list = value.as<Json::List>()) {
      Json::List all;
      for (const Json& one : *list) all.push_back(self(one, self));
      return all;
    }
    const auto* members = value.as<Json::Object>();
    if (!members) return value;
    Json::Object all = *members;
    for (Json::Member& member : all) member.value = self(member.value, self);
    std::ranges::sort(all, {}, &Json::Member::name);
    return all;
  };
  return sorted(body, sorted).dump(false);
}

}  // namespace mirvane::service
