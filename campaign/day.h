#pragma once

#include <string>
#include <vector>

#include "campaign/machine.h"
#include "campaign/tally.h"

namespace mirvane::campaign {

/// What a till does in a day. Each call is made once, and what it was told is held against what the register booked.
enum class Work {
  kDay,    // four items, a void, a discount, a comment, cash and a card for the receipt, cash in, X and Z
  kCards,  // equal items, comments and payments in a row; cards that are declined in every way, and two that are not
  kSales,  // a thousand sales, equal and unequal ones
  kSaved,  // and behind it: the scenarios of a till that saves what it does, see kills.h
};

/// Takes a line of text.
using Log = std::function<void(const std::string& line)>;

class Till;
/// What a program does within a call of its own.
using Visit = std::function<void(Till& till)>;

/// Does `work` at a till whose register misbehaves as `rules` tell; "seed N" among them says which commands those with
/// a rate strike. `machine` is fresh. `log` is told of each call.
Tally runDay(Machine& machine, Work work, const std::vector<std::string>& rules, const Log& log = {},
             const Visit& visit = {});

}  // namespace mirvane::campaign
