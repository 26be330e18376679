#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace mirvane::emulator {

using Cents = std::int64_t;
using Thousandths = std::int64_t;

/// `dividend` / `divisor` as a whole number, halves rounded away from zero. `divisor` is positive.
constexpr std::int64_t roundedQuotient(std::int64_t dividend, std::int64_t divisor) {
  return dividend >= 0 ? (dividend + divisor / 2) / divisor : -((-dividend + divisor / 2) / divisor);
}

/// The amount of a receipt line.
constexpr Cents lineAmount(Thousandths quantity, Cents price) { return roundedQuotient(quantity * price, 1000); }

/// The VAT included in `gross`, at a rate in hundredths of a percent (2400 is 24 %).
constexpr Cents includedVat(Cents gross, std::int64_t rate) { return roundedQuotient(gross * rate, 10000 + rate); }

/// The number in `text` times 10 to the power `decimals`: an optional minus, digits, and at most that many digits after
/// a point. Nothing for any other text, or if the number does not fit.
std::optional<std::int64_t> parseFixed(std::string_view text, int decimals);

/// `value` with `decimals` digits after a point: 1250 with two is "12.50".
std::string formatFixed(std::int64_t value, int decimals);

inline std::string formatCents(Cents value) { return formatFixed(value, 2); }

}  // namespace mirvane::emulator
