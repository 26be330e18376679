#include "link/transport.h"

#include "link/stopwatch.h"

namespace mirvane {

void Transport::drain() {
  constexpr double kLongest = 1;  // second
  const Stopwatch time;
  const double deadline = time.now() + kLongest;
  while (hasUnread() && time.now() < deadline) drop();
}

}  // namespace mirvane
