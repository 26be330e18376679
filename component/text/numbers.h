#pragma once

#include "text/text.h"

namespace mirvane {

/// A whole number from a numeric text, rounded half to even; 0 if the text is not numeric or exceeds 16 bits.
std::int16_t toInt(TextView text);

/// Two decimals, a decimal point, no grouping: "1234.50". The value's 15 significant digits are rounded half away from
/// zero, so 2.675 is "2.68"; a zero has no sign. The amount must be finite.
Text formatAmount(double amount);

/// As formatAmount, with three decimals: "2.000".
Text formatQuantity(double quantity);

}  // namespace mirvane
