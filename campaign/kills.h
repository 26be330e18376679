#pragma once

#include <string>
#include <vector>

#include "campaign/machine.h"
#include "campaign/tally.h"

namespace mirvane::campaign {

/// What a till that saves what it does can be made to sell: see recovery.h.
constexpr std::size_t kScenarios = 6;

/// Sells, is killed where the rules say so, is started again and asked, and holds every answer against what the
/// register booked. The rules are the emulator's, and "killed after N": a run of the program ends at that moment, and
/// another begins. `machine` is fresh.
Tally runSaved(Machine& machine, std::size_t scenario, const std::vector<std::string>& rules);

/// How many moments a run of the program has that nothing ends, the one that sells and the one behind it, and how many
/// commands the first sends.
struct Moments {
  long selling, later;
  std::size_t commands;
};
Moments countMoments(LineKind line, std::size_t scenario);

}  // namespace mirvane::campaign
