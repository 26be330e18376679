#include "text/numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>

#include "text/number_text.h"

namespace mirvane {
namespace {

// A number as its 15 significant decimal digits: 0.d1d2d3... times 10 to the power of `point`.
struct Decimal {
  bool negative;
  std::string digits;
  int point;
};

Decimal decimalOf(double value) {
  std::array<char, 40> buffer{};
  const auto end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(value), std::chars_format::scientific, 14)
          .ptr;
  const std::string_view written(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
  const auto e = written.find('e');
  int exponent = 0;
  const std::string_view exponentText = written.substr(written[e + 1] == '+' ? e + 2 : e + 1);
  std::from_chars(exponentText.data(), exponentText.data() + exponentText.size(), exponent);
  std::string digits(1, written[0]);
  digits += written.substr(2, e - 2);
  return {std::signbit(value), digits, exponent + 1};
}

// "-123.46": the value with a fixed number of decimals.
std::string fixedText(double value, int decimals) {
  Decimal decimal = decimalOf(value);
  // A leading zero takes a carry out of the first digit.
  std::string& digits = decimal.digits;
  const int leading = std::max(0, -decimal.point) + 1;
  digits.insert(0, static_cast<std::size_t>(leading), '0');
  int whole = decimal.point + leading;  // digits before the point
  const std::size_t kept = static_cast<std::size_t>(whole) + static_cast<std::size_t>(decimals);
  if (kept < digits.size()) {
    const bool up = digits[kept] >= '5';
    digits.resize(kept);
    if (up) {
      std::size_t i = kept;
      while (digits[--i] == '9') digits[i] = '0';
      ++digits[i];
    }
  } else {
    digits.append(kept - digits.size(), '0');
  }
  const bool zero = digits.find_first_not_of('0') == std::string::npos;
  const auto first = std::min(digits.find_first_not_of('0'), static_cast<std::size_t>(whole - 1));
  digits.insert(static_cast<std::size_t>(whole), 1, '.');
  std::string text(decimal.negative && !zero ? 1 : 0, '-');
  text.append(digits, first);
  return text;
}

Text widened(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

}  // namespace

std::int16_t toInt(TextView text) {
  const double rounded = std::nearbyint(parseNumber(text).value_or(0));
  if (!(rounded >= INT16_MIN && rounded <= INT16_MAX)) return 0;
  return static_cast<std::int16_t>(rounded);
}

Text formatAmount(double amount) { return widened(fixedText(amount, 2)); }

Text formatQuantity(double quantity) { return widened(fixedText(quantity, 3)); }

}  // namespace mirvane
