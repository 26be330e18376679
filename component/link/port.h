#pragma once

#include "link/transport.h"
#include "protocol/reply.h"

namespace mirvane {

/// Opens a port and makes it the component's: "COM1" and so on, or "192.168.1.50:9100" with an optional ":local port".
/// An open port is kept, whatever `name` says. Fails with kCannotOpen if the port does not exist or is in use, and with
/// kCannotConfigure if the line cannot be set up; a failed port is closed again.
Reply openPort(const Text& name);

/// Closes the serial port or the network endpoint, ignoring errors: 1 if one was open, 0 if none was.
std::int16_t closePort();

/// Closes the port because a different register is on its line. The program's call ends with the returned reply.
Reply refuseStranger();

/// The reply to a command while the port is closed.
Reply closedPort();

/// The transport of the open port: the serial line, or the network if the shared link properties say so.
Transport& transport();

}  // namespace mirvane
