#pragma once

#include <cmath>

#include "automation/errors.h"
#include "text/number_text.h"
#include "text/numbers.h"
#include "text/text.h"

namespace mirvane {

/// Builds one device command: a command code ending in "/", then fields, each closed by "/".
class Command {
 public:
  explicit Command(TextView code) : text_(code) {}

  /// Free text, cleaned, so that it cannot break the fields.
  Command& text(TextView value) { return verbatim(cleanText(value)); }
  Command& text(TextView value, std::size_t most) { return verbatim(left(cleanText(value), most)); }
  /// A text as it stands.
  Command& verbatim(TextView value) {
    text_.append(value).push_back(u'/');
    return *this;
  }
  Command& integer(std::int32_t value) { return verbatim(numberText(value)); }
  /// Two decimals. Raises overflow for infinities and NaN, and so does quantity.
  Command& amount(double value) { return verbatim(formatAmount(finite(value))); }
  /// Three decimals.
  Command& quantity(double value) { return verbatim(formatQuantity(finite(value))); }
  Command& empty() { return verbatim({}); }
  /// The end of a command whose last field is not closed.
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
