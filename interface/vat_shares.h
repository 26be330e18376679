#pragma once

#include <array>
#include <cstdint>

namespace mirvane {

/// One amount for each VAT category, A to E.
using VatAmounts = std::array<double, 5>;

/// Shares an adjustment of the receipt over the VAT categories. The adjustment is |`total` * `factor`| rounded to the
/// cent; each category's share is |its total * factor| likewise, and the rounding remainder goes to the largest share,
/// of equal ones to the later category that has sales. A share never goes below zero, nor, where |`factor`| is at most
/// 1, beyond its category's total: what the largest cannot take, the next one does.
/// `shares` receives the five shares, which add up exactly to the adjustment, and `total` becomes the adjustment. The
/// result is the category (0 to 4) whose share took the remainder first. Raises overflow for infinities and NaN.
std::int16_t apportionByVat(const VatAmounts& totals, VatAmounts& shares, double& total, double factor);

}  // namespace mirvane
