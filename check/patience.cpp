#include "check/patience.h"

#include <limits>

#include "state/module_state.h"

namespace mirvane::check {
namespace {

class ImpatientClock final : public platform::Clock {
 public:
  double secondsSinceMidnight() override { return host_.secondsSinceMidnight(); }
  double elapsed() override {
    const double now = host_.elapsed();
    if (now <= deadline) return now;
    deadline = std::numeric_limits<double>::infinity();  // cleanup during the unwinding may look at the clock too
    throw OutOfPatience();
  }
  platform::LocalTime localTime() override { return host_.localTime(); }
  std::int64_t sinceEpoch() override { return host_.sinceEpoch(); }
  int zoneAt(std::int64_t sinceEpoch) override { return host_.zoneAt(sinceEpoch); }
  void sleep(std::uint32_t milliseconds) override { host_.sleep(milliseconds); }

  double deadline = 0;

 private:
  platform::Clock& host_ = platform::hostPlatform().clock;
};

}  // namespace

Patience::Patience(double seconds) : before_(moduleState().platform) {
  static ImpatientClock clock;
  const platform::Platform& host = platform::hostPlatform();
  static platform::Platform impatient{host.serial, host.sockets, clock, host.screen, host.files};
  clock.deadline = host.clock.elapsed() + seconds;
  moduleState().platform = &impatient;
}

Patience::~Patience() { moduleState().platform = before_; }

}  // namespace mirvane::check
