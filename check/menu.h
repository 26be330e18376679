#pragma once

#include "check/examination.h"

namespace mirvane::check {

/// For a user who has double-clicked the program: checks the machine, then does what the user chooses, until the user
/// quits. Returns the outcome of the first check.
Outcome followMenu();

}  // namespace mirvane::check
