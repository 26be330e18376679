#pragma once

#include <cmath>

#include "automation/errors.h"
#include "text/number_text.h"
#include "text/numbers.h"
#include "text/text.h"

namespace mirvane {

/// Builds one register command: a command code ending in "/", then fields, each closed by "/".
class Command {
 public:
  explicit Command(TextView code) : text_(code) {}

  /// Adds free text, cleaned so that it cannot break the fields.
  Command& text(TextView value) { return verbatim(cleanText(value)); }
  Command& text(TextView value, std::size_t most) { return verbatim(left(cleanText(value), most)); }
  /// Adds a text unchanged.
  Command& verbatim(TextView value) {
    text_.append(value).push_back(u'/');
    return *this;
  }
  Command& integer(std::int32_t value) { return verbatim(numberText(value)); }
  /// Adds a number with two decimals. Raises overflow for infinities and NaN, as does quantity.
  Command& amount(double value) { return verbatim(formatAmount(finite(value))); }
  /// Adds a number with three decimals.
  Command& quantity(double value) { return verbatim(formatQuantity(finite(value))); }
  Command& empty() { return verbatim({}); }
  /// Adds a last field without its closing "/".
  Command& unclosed(TextView value) {
    text_.append(cleanText(value));
    return *this;
  }

  operator const Text&() const { return text_; }
  operator TextView() const { return text_; }

 private:
  static double finite(double value) {
    if (!std::isfinite(value)) throw AutomationError(AutomationCode::overflow);
    return value;
  }

  Text text_;
};

}  // namespace mirvane
