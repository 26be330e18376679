#pragma once

#include <cstdint>

namespace mirvane {

/// Whether the program's windows have waited long enough: two seconds from the start of the call, then every quarter of
/// a second. The caller then serves them.
bool isServiceDue();

/// Serves the program's windows if they have waited long enough. Every wait within a call calls this now and then.
void serveWindows();

/// Waits, serving the program's windows meanwhile.
void pause(std::uint32_t milliseconds);

}  // namespace mirvane
