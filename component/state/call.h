#pragma once

#include <cstdint>

#include "text/text.h"

namespace mirvane {

/// The program's call in progress. There is one at a time; calls that the program makes from within it are refused.
struct Call {
  bool isInside = false;
  /// Number of the call, by which leftovers of an earlier one are recognised.
  std::uint64_t number = 0;
  /// Whether message boxes are suppressed.
  bool isSilent = true;
  /// Whether the program has released a facade during the call: the driver is released at the end of the call.
  bool releasesDriver = false;
  /// Whether the bytes now on the line may hold a key.
  bool holdsKey = false;
  /// What the network endpoint will report at the end of the call; empty for nothing.
  TextView networkFailure{};
  /// When the program's windows are to be served next, by Clock::elapsed; 0 if they have not been yet.
  double serviceDue = 0;
};

}  // namespace mirvane
