#pragma once

#include <string>

#include "emulator/roll.h"

namespace mirvane::emulator {

/// The document as a PNG picture, black on white, as wide as the paper.
std::string pictureOf(const Document& document);

}  // namespace mirvane::emulator
