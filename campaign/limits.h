#pragma once

#include <string>

#include "campaign/machine.h"
#include "campaign/tally.h"

namespace mirvane::campaign {

/// Of two faults, or of one twice, the one under which money can go wrong over this line whatever a till does: the
/// protocol cannot tell. Empty when it is none. docs/reliability.md says why for each.
std::string limitOf(const std::string& first, const std::string& second, LineKind line);

/// What was found in a row of that name that must not be, the row being no limit, in words; empty when nothing was.
std::string mistakes(const Tally& tally, const std::string& row, LineKind line);

}  // namespace mirvane::campaign
