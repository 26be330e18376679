#pragma once

#include <span>

#include "platform/code_page.h"

namespace mirvane {

/// A whole number from a numeric text, rounded half to even; 0 for a text that is not numeric or beyond 16 bits.
std::int16_t toInt(TextView text);

/// Two decimals, a point as separator, no grouping: "1234.50". The value's 15 significant digits are rounded half away
/// from zero, so 2.675 is "2.68", and a zero has no sign. Raises overflow for infinities and NaN.
Text formatAmount(double amount);

/// As formatAmount, with three decimals: "2.000".
Text formatQuantity(double quantity);

/// The sum of the numbers, each rounded to two decimals half to even.
double sumRounded(std::span<const double> numbers);

/// Whether more than `limit` seconds have passed since `start`, both by time of day in seconds since midnight and in
/// single precision. A wait across midnight sees a negative difference and does not time out until the clock has
/// caught up.
bool isTimedOut(float start, float limit);

}  // namespace mirvane
