#pragma once

#include "platform/ports.h"

namespace mirvane::platform {

/// Opens the window of the debug trace, unless it is open, or closes it. The window has its own thread: it can be
/// scrolled, copied from and closed while the program waits for the register, and costs the program no time. It keeps
/// the component's code loaded until it is gone, shortly after it is told to close.
void showTraceWindow(bool shown);

/// Adds a line to the window; does nothing if it is not open.
void addToTraceWindow(TextView line);

}  // namespace mirvane::platform
