#pragma once

#include <cmath>

#include "automation/object.h"

namespace mirvane {

/// Writes a number as binary digits.
struct dec2Bin : ObjectOf<dec2Bin> {
  static constexpr std::string_view kName = "dec2Bin";
  static const ClassInfo& describe();

  /// Converts at once. The digits have no fixed width: 0 gives "0", 6 gives "110". A negative number gives only its
  /// last digit, because halving stops as soon as the number is no longer above 1.
  void setDecimal_(std::int16_t value) {
    Text digits;
    double n = value;
    do {
      const double half = n / 2;
      digits.insert(digits.begin(), half == std::floor(half) ? u'0' : u'1');
      n = std::floor(half);
    } while (n > 1);
    if (n > 0) digits.insert(digits.begin(), u'1');
    bin_ = digits;
  }

  /// The digits, most significant first; Empty before a number was set.
  Value Bin_() { return bin_; }

 private:
  Value bin_;
};

inline const ClassInfo& dec2Bin::describe() {
  static const ClassInfo info =
      ClassBuilder<dec2Bin>().writeOnly("Decimal_", &dec2Bin::setDecimal_).readOnly("Bin_", &dec2Bin::Bin_).build();
  return info;
}

}  // namespace mirvane
