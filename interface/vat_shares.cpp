#include "interface/vat_shares.h"

#include <algorithm>
#include <cmath>

#include "automation/number_text.h"
#include "interface/numbers.h"

namespace mirvane {
namespace {

double rounded(double amount) { return *parseNumber(formatAmount(std::abs(amount))); }

double cents(double amount) { return std::round(amount * 100); }

struct Share {
  std::int16_t category;
  double cents;
};

}  // namespace

std::int16_t apportionByVat(const VatAmounts& totals, VatAmounts& shares, double& total, double factor) {
  std::array<Share, 5> sorted{};
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    shares[i] = rounded(totals[i] * factor);
    sorted[i] = {static_cast<std::int16_t>(i), cents(shares[i])};
  }
  total = rounded(total * factor);
  double remainder = cents(total) - cents(sumRounded(shares));
  std::stable_sort(sorted.begin(), sorted.end(), [](const Share& a, const Share& b) { return a.cents < b.cents; });
  for (auto share = sorted.rbegin(); share != sorted.rend() && remainder != 0; ++share) {
    const double applied = std::max(remainder, -share->cents);
    remainder -= applied;
    shares[static_cast<std::size_t>(share->category)] = (share->cents + applied) / 100;
  }
  return sorted.back().category;
}

}  // namespace mirvane
