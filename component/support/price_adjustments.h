#pragma once

#include "automation/object.h"
#include "interface/outcome.h"

namespace mirvane {

/// What a price adjustment refers to.
struct LastItem {
  /// The last `adjustment` call's argument: True for the last item line, False for the subtotal.
  bool isAdjusted = false;
  /// Department and amount (quantity times unit price) of the last item line that the register accepted.
  std::int16_t department = 0;
  double amount = 0;
};
LastItem& lastItem();

/// Discounts and mark-ups on the open receipt: on its last item line or on its subtotal, whichever the latest
/// `adjustment` call chose. Has no state of its own. Values may have either sign; the member decides the direction.
class clsAdjust : public ObjectOf<clsAdjust> {
 public:
  static constexpr std::string_view kName = "clsAdjust";
  static const ClassInfo& describe();

  /// On the last item line `dblPercent` is overwritten with the amount in euro.
  Value percentMarkUP(Text& actionDesc, double& dblPercent, Outcome outcome, Text& exComment);
  Value percentDiscount(Text& actionDesc, double& dblPercent, Outcome outcome, Text& exComment);
  Value amountMarkUp(Text& actionDesc, double& dblAmount, Outcome outcome, Text& exComment);
  Value amountDiscount(Text& actionDesc, double& dblAmount, Outcome outcome, Text& exComment);
};

}  // namespace mirvane
