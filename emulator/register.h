#pragma once

#include <array>
#include <functional>

#include "emulator/card_payments.h"
#include "emulator/conditions.h"
#include "emulator/fiscal_state.h"
#include "emulator/journal.h"
#include "emulator/paper.h"
#include "emulator/roll.h"
#include "platform/ports.h"

namespace mirvane::emulator {

/// The customer display: two lines of twenty characters.
using Display = std::array<Text, 2>;

using LocalClock = std::function<platform::LocalTime()>;
/// Seconds from any fixed moment.
using ElapsedClock = std::function<double()>;

/// The parts of the register on which commands act.
struct Register {
  FiscalState fiscal;
  Paper paper;
  LocalClock clock;
  ElapsedClock elapsed;
  Display display{};
  int drawerOpenings = 0;
  Journal journal{};
  Roll roll{};
  CardPayments cards{};
  Conditions conditions{};

  /// Why nothing can be booked at all; kOk if it can.
  Code machineProblem() const;
  /// Why no receipt and no cash document can be started; kOk if one can.
  Code beginProblem() const;
  /// Call this when a receipt or a cash document is started.
  void openDay();
};

}  // namespace mirvane::emulator
