#pragma once

#include "platform/ports.h"

namespace mirvane {

/// Opens a serial port by name and makes it the component's, even if it cannot be set up. Returns whether it opened.
bool openSerialLine(const Text& name);

/// Applies the register's line settings to the open port; false if that fails.
bool configureSerialLine();

/// Closes the open port; false if the system reports a failure.
bool closeSerialLine();

/// Closes the port because its line has failed: an adapter was unplugged, a driver was restarted. To the program it
/// stays open, as a line on which nothing can be sent or received. `reason` goes into the flight record.
void breakSerialLine(const platform::SystemError& reason);

/// Reopens the port under the same name and with the same settings; false if that fails.
bool reopenSerialLine();

}  // namespace mirvane
