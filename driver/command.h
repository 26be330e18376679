#pragma once

#include "automation/number_text.h"
#include "interface/numbers.h"
#include "interface/text.h"

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
  Command& amount(double value) { return verbatim(formatAmount(value)); }
  Command& quantity(double value) { return verbatim(formatQuantity(value)); }
  Command& empty() { return verbatim({}); }

  const Text& str() const { return text_; }

 private:
  Text text_;
};

}  // namespace mirvane
