#pragma once

#include "state/module_state.h"

namespace mirvane {

inline platform::Clock& theClock() { return moduleState().platform->clock; }

/// Time of day that continues past midnight, so that deadlines hold at any hour.
class Stopwatch {
 public:
  double now() const { return timeOfDay_ + (theClock().elapsed() - start_); }

 private:
  double timeOfDay_ = theClock().secondsSinceMidnight();
  double start_ = theClock().elapsed();
};

}  // namespace mirvane
