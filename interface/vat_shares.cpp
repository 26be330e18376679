#include "interface/vat_shares.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>

#include "automation/number_text.h"
#include "interface/numbers.h"

namespace mirvane {
namespace {

double rounded(double amount) { return *parseNumber(formatAmount(std::abs(amount))); }

double cents(double amount) { return std::round(amount * 100); }

struct Share {
  std::int16_t category;
  bool hasSales;
  double cents;
  double most;  // cents
};

}  // namespace

std::int16_t apportionByVat(const VatAmounts& totals, VatAmounts& shares, double& total, double factor) {
  std::array<Share, 5> sorted{};
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    shares[i] = rounded(totals[i] * factor);
    // No part of a category is more than the category.
    const double most = std::abs(factor) <= 1 ? cents(rounded(totals[i])) : std::numeric_limits<double>::infinity();
    sorted[i] = {static_cast<std::int16_t>(i), totals[i] != 0, cents(shares[i]), most};
  }
  total = rounded(total * factor);
  double remainder = cents(total) - cents(sumRounded(shares));
  // Where no share reaches a cent, a category that sold nothing still has nothing to adjust.
  std::stable_sort(sorted.begin(), sorted.end(), [](const Share& a, const Share& b) {
    return std::tie(a.cents, a.hasSales) < std::tie(b.cents, b.hasSales);
  });
  for (auto share = sorted.rbegin(); share != sorted.rend() && remainder != 0; ++share) {
    const double applied = std::clamp(remainder, -share->cents, share->most - share->cents);
    remainder -= applied;
    shares[static_cast<std::size_t>(share->category)] = (share->cents + applied) / 100;
  }
  return sorted.back().category;
}

}  // namespace mirvane
