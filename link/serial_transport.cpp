#include "link/serial_transport.h"

#include <algorithm>
#include <cmath>

#include "link/received.h"
#include "link/stopwatch.h"
#include "protocol/wire.h"

namespace mirvane {
namespace {

// The line's staging buffer has 256 bytes; a text that would fill it goes out in pieces.
constexpr std::size_t kLongestWrite = 255;
constexpr std::size_t kLongestRead = 64;
constexpr double kRepeatAfter = 10;  // seconds until an unanswered command is repeated

platform::SerialPort& port() { return moduleState().platform->serial; }
std::int32_t handle() { return moduleState().portHandle; }

}  // namespace

bool SerialTransport::write(std::string_view bytes) {
  std::size_t written = 0;
  for (std::size_t at = 0; at < bytes.size(); at += kLongestWrite) {
    written += port().write(handle(), bytes.substr(at, kLongestWrite));
  }
  return written > 0;
}

// Asking for no more than is there makes the read return at once; asking for one byte paces an idle line by the port's
// read time-outs.
std::string SerialTransport::read() {
  return port().read(handle(), std::clamp<std::size_t>(port().waiting(handle()), 1, kLongestRead));
}

// No read when nothing is there: it would cost its time-out.
bool SerialTransport::hasUnread() { return port().waiting(handle()) > 0; }

// Repeats the whole exchange every ten seconds once the time-out has passed, for as long as it takes: a command may
// have reached the device, so nobody but the device can say how it ended. What was received outlives an attempt, since
// the answer to an earlier one may be on its way.
Exchange SerialTransport::exchange(const std::string& frame, std::int16_t timeOut,
                                   const std::function<void()>& onSilence) {
  const Stopwatch time;
  // To the whole second, as programs have come to know the moment of the first repetition.
  const double overallDeadline = std::nearbyint(time.now() + timeOut);
  Exchange exchange;
  for (;; onSilence()) {
    write({&wire::kCan, 1});
    write({&wire::kCan, 1});
    write({&wire::kEnq, 1});
    trace(u" ENQ", {});
    theClock().sleep(1);
    write(frame);
    trace(u" send:     ", fromCodePage(frame));
    const double attemptDeadline = time.now() + kRepeatAfter;
    do {
      append(exchange.received, read());
      if (exchange.received.ends_with(wire::kEtx)) {
        write({&wire::kAck, 1});
        return exchange;
      }
    } while (time.now() <= overallDeadline || time.now() < attemptDeadline);
  }
}

void SerialTransport::trace(TextView label, TextView text) { mirvane::trace(label, text); }

}  // namespace mirvane
