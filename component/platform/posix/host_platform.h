#pragma once

#include <functional>

#include "platform/ports.h"

namespace mirvane::platform {

/// Where the debug trace goes on POSIX, one line per call; nowhere until the host program sets it.
void setTraceSink(std::function<void(TextView line)> sink);

}  // namespace mirvane::platform
