#pragma once

#include "check/examination.h"

namespace mirvane::check {

/// For whoever has started the program with a double click: examines the machine, and then what the user asks for,
/// until they ask for nothing more. What the first examination ended with.
Outcome followMenu();

}  // namespace mirvane::check
