#include "support/vat_shares.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "automation/errors.h"
#include "text/number_text.h"
#include "text/numbers.h"

namespace mirvane {
namespace {

// Above this, cents are not exact.
constexpr double kLargest = 1e12;

// An amount in cents, without its sign.
double cents(double amount) {
  if (!(std::abs(amount) <= kLargest)) throw AutomationError(AutomationCode::overflow);
  return std::round(*parseNumber(formatAmount(std::abs(amount))) * 100);
}

struct Share {
  std::int16_t category;
  bool hasSales;
  double cents;
  double room;  // cents that may be added to it
};

}  // namespace

std::int16_t apportionByVat(const VatAmounts& totals, VatAmounts& shares, double& total, double factor,
                            Adjustment kind) {
  const double adjustment = cents(total * factor);
  double remainder = adjustment;
  std::array<Share, 5> sorted{};
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    const double share = cents(totals[i] * factor);
    const double room = kind == Adjustment::discount ? std::max(0.0, cents(totals[i]) - share) : HUGE_VAL;
    sorted[i] = {static_cast<std::int16_t>(i), totals[i] != 0, share, room};
    remainder -= share;
  }
  // The largest first. If no share reaches a cent, a category without sales still has nothing to adjust.
  std::sort(sorted.begin(), sorted.end(), [](const Share& a, const Share& b) {
    return std::tie(a.cents, a.hasSales, a.category) > std::tie(b.cents, b.hasSales, b.category);
  });
  for (Share& share : sorted) {
    const double applied = std::clamp(remainder, -share.cents, share.room);
    share.cents += applied;
    remainder -= applied;
  }
  sorted.front().cents += remainder;
  for (const Share& share : sorted) shares[static_cast<std::size_t>(share.category)] = share.cents / 100;
  total = adjustment / 100;
  return sorted.front().category;
}

}  // namespace mirvane
