#pragma once

#include <optional>

#include "text/text.h"

namespace mirvane {

/// The number that `text` is, blanks around it allowed: an optional sign, digits with at most one decimal separator and
/// an optional exponent. The separator is a point or a comma whatever the machine's locale, so that "2,5" means the
/// same price on every till; digits are never grouped. Nothing when the text is anything else; a number beyond a double
/// is infinite.
std::optional<double> parseNumber(TextView text);

/// The number at the start of `text`, with a point as separator; 0 when there is none.
double leadingNumber(TextView text);

/// The shortest text of at most 15 significant digits, a point as separator; with an exponent from 1e15 on and below
/// 0.0001.
Text numberText(double value);
Text numberText(std::int32_t value);

}  // namespace mirvane
