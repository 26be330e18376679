#pragma once

#include <map>
#include <string>

#include "campaign/plan.h"
#include "campaign/tally.h"

namespace mirvane::campaign {

/// Tallies by row and line.
using Sums = std::map<std::pair<std::size_t, LineKind>, Tally>;

/// The tables of docs/reliability.md, one for each group of rows. A cell that is not the same for all lines has three
/// numbers: serial line, network that acknowledges the frame, network that acknowledges the ENQ.
std::string tables(const Plan& plan, const Sums& sums);

/// The same numbers one row and line to a line, for a program.
std::string numbers(const Plan& plan, const Sums& sums);

/// What is worse in `sums` than in `accepted`, which `numbers` wrote, in words; empty when nothing is. A row that is
/// not there has accepted nothing.
std::string whatIsWorse(const Plan& plan, const Sums& sums, const std::string& accepted);

}  // namespace mirvane::campaign
