#pragma once

#include "platform/ports.h"

namespace mirvane::check {

/// Thrown through the exchange in progress when its time is over.
struct OutOfPatience {};

/// While this exists, the core of this program gives up after this many seconds: a serial exchange would otherwise
/// continue until the register answers. Everything that waits for a register looks at the clock, so the clock ends it.
class Patience {
 public:
  explicit Patience(double seconds);
  Patience(const Patience&) = delete;
  Patience& operator=(const Patience&) = delete;
  ~Patience();

 private:
  platform::Platform* before_;
};

}  // namespace mirvane::check
