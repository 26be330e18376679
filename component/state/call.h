#pragma once

#include <cstdint>

#include "text/text.h"

namespace mirvane {

/// The program's call that is under way. There is one at a time; what the program calls from within it is refused.
struct Call {
  bool isInside = false;
  /// Counts the calls, so that what belongs to one is known to be over in the next.
  std::uint64_t number = 0;
  /// Whether the program wants no message boxes.
  bool isSilent = true;
  /// Whether the program has let go of a facade meanwhile: the driver is released when the call is over.
  bool releasesDriver = false;
  /// Whether what goes over the line now may hold a key.
  bool holdsKey = false;
  /// What the network endpoint has to report when the call is over; empty for nothing.
  TextView networkFailure{};
  /// When the program's windows want to be served again, by Clock::elapsed; 0 for never yet.
  double serviceDue = 0;
};

}  // namespace mirvane
