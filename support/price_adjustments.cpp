#include "support/price_adjustments.h"

#include <cmath>

#include "automation/number_text.h"
#include "interface/module_state.h"
#include "interface/numbers.h"
#include "interface/text.h"
#include "interface/vat_shares.h"

namespace mirvane {
namespace {

struct Outcome {
  std::int16_t& Result;
  Text& Exresult;
  bool& SupressError_;
};

void send(const Text& command, const Outcome& outcome) {
  sendByCurrentDriver(command, outcome.Result, outcome.Exresult, outcome.SupressError_);
}

// `kind` is the command's second field and `place` its third: the department of the last item, or 1 for the subtotal.
Text command(TextView kind, std::int32_t place, const Text& description, const Text& comment, double amount,
             const VatAmounts* shares) {
  Text text = u"4/" + Text(kind) + numberText(place) + u"/" + cleanText(description) + u"/" + cleanText(comment) +
              u"/" + formatAmount(amount) + u"/";
  for (std::size_t i = 0; i < VatAmounts().size(); ++i) {
    text += shares == nullptr ? Text(u"0") : formatAmount((*shares)[i]);
    text += u'/';
  }
  return text;
}

struct Kind {
  TextView onLastItem;
  TextView onSubtotal;
  Adjustment direction;
};

constexpr Kind kMarkUp{u"3/", u"4/", Adjustment::markUp};
constexpr Kind kDiscount{u"1/", u"2/", Adjustment::discount};

// The receipt's totals are asked for first; `share` takes the categories' totals and the receipt's, fills the shares
// and makes the total the adjustment. The totals come from the reply itself, since a status condition puts its message
// into Exresult; a reply without them raises badIndex.
template <class Share>
void adjustSubtotal(const Kind& kind, const Text& description, const Text& comment, Share share,
                    const Outcome& outcome) {
  send(u"9/", outcome);
  if (outcome.Result != 0) return;
  const std::vector<Text> pieces = split(convertTo<Text>(currentDriver()->call("lastReply")), u'/');
  if (pieces.size() < 10) throw AutomationError(AutomationCode::badIndex);
  const auto piece = [&pieces](std::size_t i) { return leadingNumber(pieces[i]); };
  const VatAmounts totals{piece(3), piece(4), piece(5), piece(6), piece(7)};
  double total = piece(9);
  VatAmounts shares{};
  share(totals, shares, total);
  send(command(kind.onSubtotal, 1, description, comment, total, &shares), outcome);
}

// The caller's percentage becomes the amount that it made of the last item.
void adjustByPercent(const Kind& kind, const Text& description, double& percent, const Text& comment,
                     const Outcome& outcome) {
  const ModuleState& state = moduleState();
  percent = std::abs(percent);
  if (state.adjustOnLastItem) {
    percent = state.lastItemAmount * percent / 100;
    send(command(kind.onLastItem, state.lastItemDep, description, comment, percent, nullptr), outcome);
  } else {
    const auto share = [&](const VatAmounts& totals, VatAmounts& shares, double& total) {
      apportionByVat(totals, shares, total, -percent / 100, kind.direction);
    };
    adjustSubtotal(kind, description, comment, share, outcome);
  }
}

void adjustByAmount(const Kind& kind, const Text& description, double& amount, const Text& comment,
                    const Outcome& outcome) {
  const ModuleState& state = moduleState();
  amount = std::abs(amount);
  if (state.adjustOnLastItem) {
    send(command(kind.onLastItem, state.lastItemDep, description, comment, amount, nullptr), outcome);
  } else {
    const auto share = [&](const VatAmounts& totals, VatAmounts& shares, double& total) {
      if (total != 0) {
        apportionByVat(totals, shares, total, -amount / total, kind.direction);
      } else {
        // An empty receipt has nothing to share over: it goes out as it is, for the device to refuse.
        total = shares.back() = amount;
      }
    };
    adjustSubtotal(kind, description, comment, share, outcome);
  }
}

}  // namespace

Value clsAdjust::percentMarkUP(Text& actionDesc, double& dblPercent, std::int16_t& Result, Text& Exresult,
                               bool& SupressError_, Text& exComment) {
  adjustByPercent(kMarkUp, actionDesc, dblPercent, exComment, {Result, Exresult, SupressError_});
  return {};
}

Value clsAdjust::percentDiscount(Text& actionDesc, double& dblPercent, std::int16_t& Result, Text& Exresult,
                                 bool& SupressError_, Text& exComment) {
  adjustByPercent(kDiscount, actionDesc, dblPercent, exComment, {Result, Exresult, SupressError_});
  return {};
}

Value clsAdjust::amountMarkUp(Text& actionDesc, double& dblAmount, std::int16_t& Result, Text& Exresult,
                              bool& SupressError_, Text& exComment) {
  adjustByAmount(kMarkUp, actionDesc, dblAmount, exComment, {Result, Exresult, SupressError_});
  return {};
}

Value clsAdjust::amountDiscount(Text& actionDesc, double& dblAmount, std::int16_t& Result, Text& Exresult,
                                bool& SupressError_, Text& exComment) {
  adjustByAmount(kDiscount, actionDesc, dblAmount, exComment, {Result, Exresult, SupressError_});
  return {};
}

const ClassInfo& clsAdjust::describe() {
  static const ClassInfo info =
      ClassBuilder<clsAdjust>()
          .method("percentMarkUP", &clsAdjust::percentMarkUP,
                  {"actionDesc", "dblPercent", "Result", "Exresult", "SupressError_", optional("exComment")})
          .method("percentDiscount", &clsAdjust::percentDiscount,
                  {"actionDesc", "dblPercent", "Result", "Exresult", "SupressError_", optional("exComment")})
          .method("amountMarkUp", &clsAdjust::amountMarkUp,
                  {"actionDesc", "dblAmount", "Result", "Exresult", "SupressError_", optional("exComment")})
          .method("amountDiscount", &clsAdjust::amountDiscount,
                  {"actionDesc", "dblAmount", "Result", "Exresult", "SupressError_", optional("exComment")})
          .build();
  return info;
}

}  // namespace mirvane
