#include "link/serial_transport.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "link/received.h"
#include "link/serial_line.h"
#include "link/stopwatch.h"
#include "protocol/wire.h"

namespace mirvane {
namespace {

using recorder::EventKind;

// The line's staging buffer has 256 bytes; a text that would fill it goes out in pieces.
constexpr std::size_t kLongestWrite = 255;
constexpr std::size_t kLongestRead = 64;
constexpr std::array kBeginBytes = {wire::kCan, wire::kCan, wire::kEnq};
constexpr std::string_view kBegin{kBeginBytes.data(), kBeginBytes.size()};
constexpr double kRepeatAfter = 10;  // seconds until an unanswered command is repeated

platform::SerialPort& port() { return moduleState().platform->serial; }
std::int32_t handle() { return moduleState().portHandle; }

// How many bytes the line took.
std::size_t put(std::string_view bytes) {
  std::size_t written = 0;
  for (std::size_t at = 0; at < bytes.size(); at += kLongestWrite) {
    written += port().write(handle(), bytes.substr(at, kLongestWrite));
  }
  return written;
}

// Asking for no more than is there makes the read return at once; asking for one byte paces an idle line by the port's
// read time-outs.
std::string take() { return port().read(handle(), std::clamp<std::size_t>(port().waiting(handle()), 1, kLongestRead)); }

// What came within an attempt, which the record shows as one piece.
class Arrivals {
 public:
  Arrivals() = default;
  Arrivals(const Arrivals&) = delete;
  Arrivals& operator=(const Arrivals&) = delete;
  ~Arrivals() { tell(); }

  void add(std::string_view bytes) {
    constexpr std::size_t kMost = 4096;
    bytes_ += bytes;
    if (bytes_.size() >= kMost) tell();
  }
  void tell() {
    recordBytes(EventKind::kReceived, bytes_);
    bytes_.clear();
  }

 private:
  std::string bytes_;
};

}  // namespace

bool SerialTransport::write(std::string_view bytes) {
  const std::size_t written = put(bytes);
  recordBytes(EventKind::kSent, bytes.substr(0, written));
  return written > 0;
}

std::string SerialTransport::read() {
  std::string bytes = take();
  recordBytes(EventKind::kReceived, bytes);
  return bytes;
}

// No read when nothing is there: it would cost its time-out.
bool SerialTransport::hasUnread() { return port().waiting(handle()) > 0; }

void SerialTransport::drop() { recordBytes(EventKind::kDropped, take()); }

// A line that does not take the first byte has gone, and may be back under the same name.
void SerialTransport::beginAttempt() {
  if (put(kBegin.substr(0, 1)) == 0) {
    reopenSerialLine();
    put(kBegin.substr(0, 1));
  }
  put(kBegin.substr(1, 1));
  if (put(kBegin.substr(2)) > 0) recordBytes(EventKind::kSent, kBegin);
}

// Repeats the whole exchange every ten seconds once the time-out has passed, for as long as it takes: a command may
// have reached the device, so nobody but the device can say how it ended. What was received outlives an attempt, since
// the answer to an earlier one may be on its way.
Exchange SerialTransport::exchange(const std::string& frame, std::int16_t timeOut, SilenceObserver& silence) {
  const Stopwatch time;
  // To the whole second, as programs have come to know the moment of the first repetition.
  const double overallDeadline = std::nearbyint(time.now() + timeOut);
  Exchange exchange;
  for (int attempt = 1;; ++attempt) {
    if (attempt > 1) {
      record(EventKind::kRepeat, attempt);
      silence.repeats();
    }
    beginAttempt();
    trace(u" ENQ", {});
    theClock().sleep(1);
    write(frame);
    trace(u" send:     ", fromCodePage(frame));
    const double attemptDeadline = time.now() + kRepeatAfter;
    Arrivals arrivals;
    do {
      const std::string piece = take();
      arrivals.add(piece);
      append(exchange.received, piece);
      if (exchange.received.ends_with(wire::kEtx)) {
        arrivals.tell();
        write({&wire::kAck, 1});
        return exchange;
      }
      if (attempt > 1) silence.waits();
    } while (time.now() <= overallDeadline || time.now() < attemptDeadline);
  }
}

void SerialTransport::trace(TextView label, TextView text) { mirvane::trace(label, text); }

}  // namespace mirvane
