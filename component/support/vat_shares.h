#pragma once

#include <array>
#include <cstdint>

namespace mirvane {

/// One amount for each VAT category, A to E.
using VatAmounts = std::array<double, 5>;

enum class Adjustment { discount, markUp };

/// Shares an adjustment of the receipt over the VAT categories. The adjustment is |`total` * `factor`| rounded to the
/// cent, and each category's share is |its total * factor| likewise. What they differ by goes to the largest share, of
/// equal ones to the later category that has sales; a discount's only as far as no share exceeds its category's total,
/// then to the next one, and what no category can take goes to the largest all the same. A share never goes below zero.
/// So the shares add up to the adjustment whatever totals are given.
///
/// `shares` receives the five shares, and `total` becomes the adjustment. The result is the category (0 to 4) with the
/// largest share. Raises overflow for amounts beyond a million millions, infinities and NaN.
std::int16_t apportionByVat(const VatAmounts& totals, VatAmounts& shares, double& total, double factor,
                            Adjustment kind);

}  // namespace mirvane
