#pragma once

#include "platform/ports.h"

namespace mirvane::check {

/// Thrown through the exchange that is under way when its time is over.
struct OutOfPatience {};

/// For as long as it lives, the core of this program gives up after so many seconds: a serial exchange would otherwise
/// go on until the device answers. Everything that waits for a device looks at the clock, so the clock is what ends it.
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
