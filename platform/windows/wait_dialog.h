#pragma once

#include "platform/ports.h"

namespace mirvane::platform {

/// The window of Screen::waitWhile.
void runWaitDialog(WaitText text, const std::function<bool(WaitText&)>& tick);

}  // namespace mirvane::platform
