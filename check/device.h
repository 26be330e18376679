#pragma once

#include <string>

#include "check/findings.h"

namespace mirvane::check {

/// Asks the register at a port who it is and how it is. Each question has two seconds. The port is closed again.
/// `slip`: prints a short slip that is not fiscal, unless a receipt is open.
Findings askRegister(const std::string& port, bool slip);

/// One finding: what answers at the port.
Findings askWho(const std::string& port);

/// Asks at every serial port of this machine, at all of them at once, by copies of this program that end at a deadline.
Findings findRegister();

}  // namespace mirvane::check
