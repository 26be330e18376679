#pragma once

#include <algorithm>
#include <vector>

#include "automation/number_text.h"
#include "automation/value.h"
#include "interface/numbers.h"
#include "interface/text.h"

namespace mirvane {

/// Whether a reply begins with its result and both status bytes, "HH/HH/HH". One that does not tells nothing.
inline bool hasStatus(TextView reply) {
  constexpr TextView kForm = u"HH/HH/HH";
  if (reply.size() < kForm.size()) return false;
  const auto isHexDigit = [](char16_t c) {
    return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F') || (c >= u'a' && c <= u'f');
  };
  return std::equal(kForm.begin(), kForm.end(), reply.begin(),
                    [&](char16_t form, char16_t c) { return form == u'H' ? isHexDigit(c) : c == form; });
}

/// The fields of one reply, from 0, behind its result and status bytes. Reading past the last one raises badIndex: the
/// values taken before it stand.
class ReplyFields {
 public:
  explicit ReplyFields(const Text& reply) {
    splitReply(reply);
    const std::vector<Text> pieces = split(reply, u'/');
    if (pieces.size() > 4) fields_.assign(pieces.begin() + 3, pieces.end() - 1);
  }

  bool empty() const { return fields_.empty(); }
  const Text& text(std::size_t i) const {
    if (i >= fields_.size()) throw AutomationError(AutomationCode::badIndex);
    return fields_[i];
  }
  /// The number at the field's start, 0 when there is none.
  double number(std::size_t i) const { return leadingNumber(text(i)); }
  /// The same as a whole number; raises overflow when it is beyond the type.
  template <class Integer>
  Integer integer(std::size_t i) const {
    return convertTo<Integer>(Value(number(i)));
  }
  /// A whole number from a numeric field, 0 from any other.
  std::int16_t size(std::size_t i) const { return toInt(text(i)); }

 private:
  std::vector<Text> fields_;
};

}  // namespace mirvane
