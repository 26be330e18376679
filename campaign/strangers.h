#pragma once

#include <memory>

#include "platform/ports.h"

namespace mirvane::campaign {

/// Who sits on the serial line when it has gone and comes back: the same register as before, another one, a plug that
/// sends back what it is sent, a scale that tells a weight whenever it is asked anything.
enum class Stranger { kNone, kRegister, kLoopPlug, kScale };

/// The line as it is with the stranger at its end; null for kNone.
std::unique_ptr<platform::SerialPort> makeStranger(Stranger stranger, platform::Clock& clock);

}  // namespace mirvane::campaign
