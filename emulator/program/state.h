#pragma once

#include <stdexcept>
#include <string>

#include "emulator/program/station.h"

namespace mirvane::emulator {

/// The memory on the disk cannot be written, or cannot be understood. The text tells why.
struct StateError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// All that the register remembers when its power goes, as JSON.
std::string rememberedState(Station& station);
/// Throws StateError when `text` is no such memory; the register is then as it was.
void recallState(Station& station, const std::string& text);

}  // namespace mirvane::emulator
