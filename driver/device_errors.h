#pragma once

#include <cstdint>

#include "platform/code_page.h"

namespace mirvane {

/// The device's message for one of its result codes, 1 to 166; empty for any other.
TextView deviceErrorText(std::int32_t code);

}  // namespace mirvane
