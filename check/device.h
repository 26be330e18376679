#pragma once

#include <string>

#include "check/findings.h"

namespace mirvane::check {

/// Asks the register at a port for its identity and state, with two seconds for each question, and closes the port.
/// `slip`: also prints a short non-fiscal slip, unless a receipt is open.
Findings askRegister(const std::string& port, bool slip);

/// One finding: what answers at the port.
Findings askWho(const std::string& port);

/// Asks at all serial ports of this machine at once, through copies of this program that end at a deadline.
Findings findRegister();

}  // namespace mirvane::check
