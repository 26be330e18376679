#pragma once

#include "platform/ports.h"

namespace mirvane::platform {

/// Opens the window of the debug trace, unless it is open, or closes it. It lives on a thread of its own, so it can be
/// scrolled, copied from and closed while the program waits for the device, and never takes the program's time. It
/// keeps the component's code loaded until it is gone, which is soon after it was told to close.
void showTraceWindow(bool shown);

/// Adds a line to the window; nothing when it is not open.
void addToTraceWindow(TextView line);

}  // namespace mirvane::platform
