#pragma once

#include "platform/ports.h"

namespace mirvane::platform {

/// Shows a journal in a window. This thread's other windows take no input until it closes.
std::unique_ptr<JournalView> showJournalWindow();

}  // namespace mirvane::platform
