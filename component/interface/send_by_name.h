#pragma once

#include "interface/outcome.h"

namespace mirvane {

/// Sends a command through the current driver's members.
Reply sendByCurrentDriver(Text command, Outcome outcome);

/// The same without message boxes, for a command whose outcome the caller does not see.
Reply askCurrentDriver(Text command);

}  // namespace mirvane
