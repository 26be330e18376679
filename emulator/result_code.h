#pragma once

#include "protocol/device_codes.h"

namespace mirvane::emulator {

using Code = DeviceCode;

}  // namespace mirvane::emulator
