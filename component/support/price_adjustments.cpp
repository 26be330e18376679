#include "support/price_adjustments.h"

#include <cmath>

#include "interface/door.h"
#include "interface/send_by_name.h"
#include "protocol/command.h"
#include "state/module_state.h"
#include "support/vat_shares.h"

namespace mirvane {
namespace {

// `kind` is the command's second field and `place` its third: the department of the last item, or 1 for the subtotal.
Command command(TextView kind, std::int32_t place, const Text& description, const Text& comment, double amount) {
  return Command(u"4/" + Text(kind)).integer(place).text(description).text(comment).amount(amount);
}

struct Kind {
  TextView onLastItem;
  TextView onSubtotal;
  Adjustment direction;
};

constexpr Kind kMarkUp{u"3/", u"4/", Adjustment::markUp};
constexpr Kind kDiscount{u"1/", u"2/", Adjustment::discount};

// Reads the receipt's totals first. `share` gets the categories' totals and the receipt's total, fills the shares and
// turns the total into the adjustment. The totals come from the reply itself, because a printer condition puts its
// message into Exresult; a reply without them raises badIndex.
template <class Share>
void adjustSubtotal(const Kind& kind, const Text& description, const Text& comment, Share share, Outcome outcome) {
  const Reply reply = sendByCurrentDriver(u"9/", outcome);
  if (!reply.succeeded()) return;
  const auto number = [&reply](std::size_t i) { return leadingNumber(reply.textAt(i)); };
  double total = number(6);
  const VatAmounts totals{number(0), number(1), number(2), number(3), number(4)};
  VatAmounts shares{};
  share(totals, shares, total);
  Command all = command(kind.onSubtotal, 1, description, comment, total);
  for (const double part : shares) all.amount(part);
  sendByCurrentDriver(all, outcome);
}

void adjustLastItem(const Kind& kind, const Text& description, const Text& comment, double amount, Outcome outcome) {
  Command whole = command(kind.onLastItem, lastItem().department, description, comment, amount);
  for (std::size_t i = 0; i < VatAmounts().size(); ++i) whole.integer(0);
  sendByCurrentDriver(whole, outcome);
}

// The caller's percentage is overwritten with the amount that it gave on the last item.
Value adjustByPercent(const Kind& kind, const Text& description, double& percent, const Text& comment,
                      Outcome outcome) {
  percent = std::abs(percent);
  if (lastItem().isAdjusted) {
    percent = lastItem().amount * percent / 100;
    adjustLastItem(kind, description, comment, percent, outcome);
  } else {
    const auto share = [&](const VatAmounts& totals, VatAmounts& shares, double& total) {
      apportionByVat(totals, shares, total, -percent / 100, kind.direction);
    };
    adjustSubtotal(kind, description, comment, share, outcome);
  }
  return {};
}

Value adjustByAmount(const Kind& kind, const Text& description, double& amount, const Text& comment, Outcome outcome) {
  amount = std::abs(amount);
  if (lastItem().isAdjusted) {
    adjustLastItem(kind, description, comment, amount, outcome);
  } else {
    const auto share = [&](const VatAmounts& totals, VatAmounts& shares, double& total) {
      if (total != 0) {
        apportionByVat(totals, shares, total, -amount / total, kind.direction);
      } else {
        // An empty receipt has nothing to divide among: the adjustment is sent as it is, and the register refuses it.
        total = shares.back() = amount;
      }
    };
    adjustSubtotal(kind, description, comment, share, outcome);
  }
  return {};
}

}  // namespace

LastItem& lastItem() { return kept<LastItem>(); }

Value clsAdjust::percentMarkUP(Text& actionDesc, double& dblPercent, Outcome outcome, Text& exComment) {
  return adjustByPercent(kMarkUp, actionDesc, dblPercent, exComment, outcome);
}

Value clsAdjust::percentDiscount(Text& actionDesc, double& dblPercent, Outcome outcome, Text& exComment) {
  return adjustByPercent(kDiscount, actionDesc, dblPercent, exComment, outcome);
}

Value clsAdjust::amountMarkUp(Text& actionDesc, double& dblAmount, Outcome outcome, Text& exComment) {
  return adjustByAmount(kMarkUp, actionDesc, dblAmount, exComment, outcome);
}

Value clsAdjust::amountDiscount(Text& actionDesc, double& dblAmount, Outcome outcome, Text& exComment) {
  return adjustByAmount(kDiscount, actionDesc, dblAmount, exComment, outcome);
}

const ClassInfo& clsAdjust::describe() {
  static const ClassInfo info = [] {
    ClassBuilder<clsAdjust> table;
    for (const auto& [name, value, member] : {std::tuple("percentMarkUP", "dblPercent", &clsAdjust::percentMarkUP),
                                              std::tuple("percentDiscount", "dblPercent", &clsAdjust::percentDiscount),
                                              std::tuple("amountMarkUp", "dblAmount", &clsAdjust::amountMarkUp),
                                              std::tuple("amountDiscount", "dblAmount", &clsAdjust::amountDiscount)}) {
      table.method(name, member, {"actionDesc", value, optional("exComment")});
    }
    return throughDoor(table.build());
  }();
  return info;
}

}  // namespace mirvane
