#pragma once

#include "protocol/words.h"

namespace mirvane {

/// The commands of the second-generation register.
extern const Words kSecondGenerationWords;

}  // namespace mirvane
