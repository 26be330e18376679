#pragma once

#include <optional>

#include "text/text.h"

namespace mirvane {

/// The number that `text` represents, with optional blanks around it: an optional sign, digits with at most one decimal
/// separator, and an optional exponent. The separator is a point or a comma whatever the machine's locale, so that
/// "2,5" is the same price on every till; digits are never grouped. Nothing for any other text. A number too large for
/// a double is infinite.
std::optional<double> parseNumber(TextView text);

/// The number at the start of `text`, with a decimal point; 0 if there is none.
double leadingNumber(TextView text);

/// The shortest text with at most 15 significant digits and a decimal point; with an exponent from 1e15 up and below
/// 0.0001.
Text numberText(double value);
Text numberText(std::int32_t value);

}  // namespace mirvane
