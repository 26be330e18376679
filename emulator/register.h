#pragma once

#include <array>
#include <functional>

#include "emulator/fiscal_state.h"
#include "emulator/journal.h"
#include "emulator/paper.h"
#include "platform/ports.h"

namespace mirvane::emulator {

/// The customer's display: two lines of twenty characters.
using Display = std::array<Text, 2>;

using LocalClock = std::function<platform::LocalTime()>;

/// The parts of the machine that commands act on.
struct Register {
  FiscalState fiscal;
  Paper paper;
  LocalClock clock;
  Display display{};
  int drawerOpenings = 0;
  Journal journal{};
};

}  // namespace mirvane::emulator
