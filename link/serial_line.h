#pragma once

#include "text/code_page.h"

namespace mirvane {

/// Opens a serial port by its name and makes it the component's, set up or not; whether it opened.
bool openSerialLine(const Text& name);

/// Sets the open port up as the device's line is; false when it cannot be.
bool configureSerialLine();

/// Closes the open port; false when the system failed.
bool closeSerialLine();

/// Opens the port anew, by the name and with the settings that it has, after its line has gone: an adapter that was
/// pulled, a driver that was restarted. Where that fails, the port stays open to the program, on a line that takes and
/// gives nothing, and may be opened anew later.
void reopenSerialLine();

}  // namespace mirvane
