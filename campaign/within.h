#pragma once

#include "campaign/day.h"

namespace mirvane::campaign {

/// What a program does at every moment at which its own code can run within a call of its own.
enum class Within {
  kNothing,
  kCalls,          // calls what talks to the register, with variables of its own
  kCallsWithSame,  // the same with the variables of the call that it is in
  kConnectsAgain,  // lets go of its one object, takes another and connects
  kLetsGo,         // lets go of its one object and takes another, once
};

/// The day with the program's doing so, held against the same day without.
Tally compareDays(LineKind line, Work work, const std::vector<std::string>& rules, Within within);

}  // namespace mirvane::campaign
