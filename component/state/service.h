#pragma once

#include <cstdint>

namespace mirvane {

/// Whether the program's windows have waited long enough: two seconds from the call's beginning on, then every quarter
/// of a second. Whoever asks serves them.
bool isServiceDue();

/// Serves the program's windows where they have waited long enough. Whatever waits in a call does this now and then.
void serveWindows();

/// Waits, and serves the program's windows meanwhile.
void pause(std::uint32_t milliseconds);

}  // namespace mirvane
