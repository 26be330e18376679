#pragma once

#include <map>
#include <string>

#include "campaign/plan.h"
#include "campaign/tally.h"

namespace mirvane::campaign {

/// Tallies by row and line.
using Sums = std::map<std::pair<std::size_t, LineKind>, Tally>;

/// The tables of the guides, one for each group of rows from `first` to `last`. A cell that is not the same for all
/// lines has three numbers: serial line, network that acknowledges the frame, network that acknowledges the ENQ. A
/// column without findings is left out; the rows without are named below.
std::string tables(const Plan& plan, const Sums& sums, Row::Group first, Row::Group last);

/// What must not be found in any row that is no limit of the protocol, in words; empty when nothing was.
std::string mistakes(const Plan& plan, const Sums& sums);

/// What was found, one row and line to a line.
std::string accepted(const Plan& plan, const Sums& sums);

/// What is worse in `sums` than in `before`, which `accepted` wrote, in words; empty when nothing is. A row that is not
/// there has accepted nothing.
std::string whatIsWorse(const Plan& plan, const Sums& sums, const std::string& before);

}  // namespace mirvane::campaign
