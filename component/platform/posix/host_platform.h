#pragma once

#include <functional>

#include "platform/ports.h"

namespace mirvane::platform {

/// Where the debug trace goes natively, one line a call; nowhere until the host program sets it.
void setTraceSink(std::function<void(TextView line)> sink);

}  // namespace mirvane::platform
