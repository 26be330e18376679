#pragma once

#include "link/transport.h"
#include "protocol/reply.h"

namespace mirvane {

/// Opens a port and makes it the component's: "COM1" and so on, or "192.168.1.50:9100" with an optional ":local port".
/// An open port is kept, whatever `name` says. Fails with kCannotOpen for a port that is not there or taken, and with
/// kCannotConfigure for a line that cannot be set up; what was opened is closed then.
Reply openPort(const Text& name);

/// Closes the serial port or the network endpoint, whichever is open, whatever fails on the way: 1 when one was closed,
/// 0 when none was open.
std::int16_t closePort();

/// Closes the port because another device than the one before sits on its line. This call of the program's ends with
/// what is returned.
Reply refuseStranger();

/// Why nothing is sent over a port that is closed.
Reply closedPort();

/// The way to the open port: the serial line, or the network where the shared link properties say so.
Transport& transport();

}  // namespace mirvane
