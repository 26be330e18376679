#pragma once

#include "platform/ports.h"

namespace mirvane {

/// Opens a serial port by its name and makes it the component's, set up or not; whether it opened.
bool openSerialLine(const Text& name);

/// Sets the open port up as the device's line is; false when it cannot be.
bool configureSerialLine();

/// Closes the open port; false when the system failed.
bool closeSerialLine();

/// Closes the port, whose line has gone: an adapter that was pulled, a driver that was restarted. To the program it
/// stays open, on a line that takes and gives nothing. `reason` is for the flight record.
void breakSerialLine(const platform::SystemError& reason);

/// Opens it anew, by the name and with the settings that it had; false when that fails.
bool reopenSerialLine();

}  // namespace mirvane
