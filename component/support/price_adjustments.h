#pragma once

#include "automation/object.h"
#include "interface/outcome.h"

namespace mirvane {

/// What a price adjustment refers to.
struct LastItem {
  /// The last `adjustment` call's argument: the last item line, not the subtotal.
  bool isAdjusted = false;
  /// Department and amount, quantity by unit price, of the last item line that the device took.
  std::int16_t department = 0;
  double amount = 0;
};
LastItem& lastItem();

/// Discounts and mark-ups on the open receipt: on its last item line or on its subtotal, as the `adjustment` call that
/// gave this object said. It holds no state of its own. Values may have either sign; the member decides the direction.
class clsAdjust : public ObjectOf<clsAdjust> {
 public:
  static constexpr std::string_view kName = "clsAdjust";
  static const ClassInfo& describe();

  /// On the last item line, `dblPercent` holds the amount in euro afterwards.
  Value percentMarkUP(Text& actionDesc, double& dblPercent, Outcome outcome, Text& exComment);
  Value percentDiscount(Text& actionDesc, double& dblPercent, Outcome outcome, Text& exComment);
  Value amountMarkUp(Text& actionDesc, double& dblAmount, Outcome outcome, Text& exComment);
  Value amountDiscount(Text& actionDesc, double& dblAmount, Outcome outcome, Text& exComment);
};

}  // namespace mirvane
