#pragma once

#include <array>
#include <cstdint>

namespace mirvane {

/// One amount for each VAT category, A to E.
using VatAmounts = std::array<double, 5>;

enum class Adjustment { discount, markUp };

/// Divides an adjustment of the receipt among the VAT categories. The adjustment is |`total` * `factor`| rounded to the
/// cent, and each share is |category total * factor|, rounded likewise. The remainder goes to the largest share; of
/// equal shares, to the later category that has sales. For a discount no share may exceed its category's total: the
/// rest goes to the next largest share, and what no category can take still goes to the largest. No share is negative,
/// and the shares always add up to the adjustment.
///
/// `shares` receives the five shares, and `total` becomes the adjustment. Returns the category (0 to 4) with the
/// largest share. Raises overflow for amounts above 10^12, infinities and NaN.
std::int16_t apportionByVat(const VatAmounts& totals, VatAmounts& shares, double& total, double factor,
                            Adjustment kind);

}  // namespace mirvane
