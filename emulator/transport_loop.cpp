#include <poll.h>
#include <sys/prctl.h>

#include <algorithm>
#include <cerrno>

#include "emulator/transport.h"

namespace mirvane::emulator {

void serve(const std::vector<std::unique_ptr<Transport>>& transports, const volatile std::sig_atomic_t& stop,
           const sigset_t& mask) {
  using Clock = std::chrono::steady_clock;
  // The system may otherwise let a wait run over by half a byte's time on the wire.
  ::prctl(PR_SET_TIMERSLACK, 1);
  std::vector<pollfd> polled(transports.size());
  while (!stop) {
    std::optional<Clock::time_point> next;
    for (std::size_t i = 0; i < transports.size(); ++i) {
      Transport& transport = *transports[i];
      const bool isBlocked = !transport.flush();
      polled[i] = {transport.descriptor(), static_cast<short>(isBlocked ? POLLIN | POLLOUT : POLLIN), 0};
      if (isBlocked || transport.outbox().empty()) continue;
      next = next ? std::min(*next, transport.outbox().due()) : transport.outbox().due();
    }
    timespec wait{};
    if (next) {
      const auto left = std::max(*next - Clock::now(), Clock::duration::zero());
      wait = {static_cast<time_t>(left / std::chrono::seconds(1)),
              static_cast<long>((left % std::chrono::seconds(1)).count())};
    }
    if (::ppoll(polled.data(), polled.size(), next ? &wait : nullptr, &mask) <= 0) continue;
    for (std::size_t i = 0; i < transports.size(); ++i) {
      if (polled[i].revents & ~POLLOUT) transports[i]->receive();
    }
  }
}

}  // namespace mirvane::emulator
