#pragma once

#include "interface/outcome.h"

namespace mirvane {

/// Has the current driver send a command, without a password, through its members of the driver interface.
Reply sendByCurrentDriver(Text command, Outcome outcome);

/// The same without boxes and without a caller who sees the outcome.
Reply askCurrentDriver(Text command);

}  // namespace mirvane
