#pragma once

#include <string>
#include <vector>

#include "campaign/machine.h"
#include "campaign/tally.h"

namespace mirvane::campaign {

/// Takes a line of text.
using Log = std::function<void(const std::string& line)>;

/// A day at a till whose register misbehaves as `rules` tell: four items, a void, a discount, a comment, cash and a
/// card for the receipt, cash in, X and Z. Each call is made once. What each was told is held against what the register
/// booked. `machine` is fresh. `log` is told of
/// each call.
Tally runDay(Machine& machine, const std::vector<std::string>& rules, const Log& log = {});

}  // namespace mirvane::campaign
