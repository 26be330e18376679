#include "link/serial_transport.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "link/frame.h"
#include "link/open_port.h"
#include "link/received.h"
#include "link/serial_line.h"
#include "link/stopwatch.h"
#include "protocol/reply.h"
#include "protocol/wire.h"
#include "text/code_page.h"

namespace mirvane {
namespace {

using recorder::EventKind;

// The line's buffer has 256 bytes; a text that would fill it is sent in pieces.
constexpr std::size_t kLongestWrite = 255;
constexpr std::size_t kLongestRead = 64;
constexpr std::array kBeginBytes = {wire::kCan, wire::kCan, wire::kEnq};
constexpr std::string_view kBegin{kBeginBytes.data(), kBeginBytes.size()};
constexpr double kRepeatAfter = 10;  // seconds until an unanswered command is repeated
constexpr double kReopenEvery = 2;   // seconds, while a line is unplugged
constexpr int kMostEmptyAttempts = 3;
constexpr int kMostStrangeReplies = 3;

platform::SerialPort& port() { return moduleState().platform->serial; }
std::int32_t handle() { return thePort().handle; }

// How many bytes the line accepted; nothing if it has failed.
platform::Attempt<std::size_t> put(std::string_view bytes) {
  std::size_t written = 0;
  for (std::size_t at = 0; at < bytes.size(); at += kLongestWrite) {
    auto piece = port().write(handle(), bytes.substr(at, kLongestWrite));
    if (!piece) return piece;
    written += *piece;
  }
  return written;
}

// Reading no more than is there returns at once; reading one byte waits for the port's read time-outs on an idle line.
// Nothing if the line has failed.
platform::Attempt<std::string> readWaiting() {
  auto waiting = port().waiting(handle());
  if (!waiting) return std::move(waiting.reason);
  return port().read(handle(), std::clamp<std::size_t>(*waiting, 1, kLongestRead));
}

// What was received during an attempt; the record shows it as one piece.
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

class SerialExchange {
 public:
  SerialExchange(const std::string& frame, const Sending& sending, SilenceObserver& silence)
      : frame_(frame), sending_(sending), silence_(silence) {}

  // Repeats the exchange every ten seconds after the time-out, without end: the command may have reached the register,
  // so only the register can say how it ended.
  Exchange run() {
    // To the whole second: programs rely on the moment of the first repetition.
    timeOut_ = std::nearbyint(time_.now() + sending_.timeOut);
    for (;;) {
      send();
      if (listen()) return exchange_;
      record(EventKind::kRepeat, ++exchange_.attempts);
      silence_.fallsSilent();
    }
  }

  Exchange runOnce(double seconds) {
    const double end = time_.now() + seconds;
    if (putAll()) {
      Arrivals arrivals;
      while (time_.now() < end) {
        const auto piece = readWaiting();
        if (!piece) break;
        arrivals.add(*piece);
        append(exchange_.received, *piece);
        if (exchange_.received.ends_with(wire::kEtx)) return exchange_;
        silence_.waits();
      }
    }
    return {link_result::kNoAnswer, link_result::kNoAnswerText};
  }

 private:
  // Sends the frame. If the line fails before that, it is reopened as often as necessary.
  void send() {
    for (;;) {
      const auto taken = putAll();
      if (taken == std::size_t{0}) {
        ++emptyAttempts_;
      } else if (taken) {
        emptyAttempts_ = 0;
      }
      if (taken && emptyAttempts_ < kMostEmptyAttempts) break;
      heal(taken.reason);
    }
    sentAt_ = time_.now();
  }

  // Sends handshake and frame. Returns how many of these bytes the line accepted; nothing if it has failed.
  platform::Attempt<std::size_t> putAll() const {
    bool& owesAck = thePort().owesAck;
    if (owesAck) owesAck = put({&wire::kAck, 1}).value_or(0) == 0;
    std::size_t all = 0;
    for (const char& byte : kBegin) {
      auto taken = put({&byte, 1});
      if (!taken) return taken;
      all += *taken;
    }
    if (all == kBegin.size()) recordBytes(EventKind::kSent, kBegin);
    mirvane::trace(u" ENQ");
    theClock().sleep(1);
    auto taken = put(frame_);
    if (!taken) return taken;
    recordBytes(EventKind::kSent, std::string_view(frame_).substr(0, *taken));
    mirvane::trace(u" send:     ", fromCodePage(frame_));
    return all + *taken;
  }

  // Reads the reply; false when it is time to send the frame again.
  bool listen() {
    Arrivals arrivals;
    do {
      if (const auto piece = readWaiting(); piece) {
        arrivals.add(*piece);
        // Bytes from an earlier attempt stay: they may be the beginning of its answer.
        append(exchange_.received, *piece);
      } else {
        arrivals.tell();
        heal(piece.reason);
      }
      if (exchange_.received.ends_with(wire::kEtx) && isOver()) return true;
      silence_.waits();
    } while (!isTimeToRepeat());
    return false;
  }

  // It is not known what is on a reopened line. Without this check anything that ends in ETX would count as an answer,
  // even a scale's weight.
  bool isOver() {
    if (!thePort().isReopened) return true;
    if (hasStatus(withoutControls(replyIn(fromCodePage(exchange_.received))))) return true;
    exchange_.received.clear();
    if (++strangeReplies_ < kMostStrangeReplies) return false;
    exchange_.failure = link_result::kNoAnswer;
    exchange_.text = link_result::kNoAnswerText;
    return true;
  }

  // The answer was lost with the line. But it is not known whether a register recognises a repetition while it still
  // executes, so a payment still waits its own time.
  bool isTimeToRepeat() const {
    const double now = time_.now();
    const bool hasOwnTime = !hasFailed_ || sending_.word.pays;
    return now >= sentAt_ + kRepeatAfter && !(hasOwnTime && now <= timeOut_);
  }

  // Reopens the line, at once and then every few seconds.
  void heal(const platform::SystemError& reason) {
    emptyAttempts_ = 0;
    hasFailed_ = true;
    breakSerialLine(reason);
    silence_.fallsSilent();
    while (!reopenSerialLine()) {
      const double next = time_.now() + kReopenEvery;
      while (time_.now() < next) {
        constexpr std::uint32_t kGlance = 20;
        theClock().sleep(kGlance);
        silence_.waits();
      }
    }
  }

  const std::string& frame_;
  const Sending& sending_;
  SilenceObserver& silence_;
  const Stopwatch time_;
  double timeOut_ = 0;
  double sentAt_ = 0;
  bool hasFailed_ = false;
  /// Consecutive attempts in which the line accepted no byte.
  int emptyAttempts_ = 0;
  int strangeReplies_ = 0;
  Exchange exchange_;
};

}  // namespace

bool SerialTransport::write(std::string_view bytes) {
  const std::size_t written = put(bytes).value_or(0);
  recordBytes(EventKind::kSent, bytes.substr(0, written));
  return written > 0;
}

std::string SerialTransport::read() {
  std::string bytes = readWaiting().value_or(std::string());
  recordBytes(EventKind::kReceived, bytes);
  return bytes;
}

// Does not read if nothing is there: that would wait for the time-out.
bool SerialTransport::hasUnread() { return port().waiting(handle()).value_or(0) > 0; }

void SerialTransport::drop() { recordBytes(EventKind::kDropped, readWaiting().value_or(std::string())); }

Exchange SerialTransport::exchange(const std::string& frame, const Sending& sending, SilenceObserver& silence) {
  return SerialExchange(frame, sending, silence).run();
}

Exchange SerialTransport::attempt(const std::string& frame, double seconds) {
  SilenceObserver observer;
  return SerialExchange(frame, {}, observer).runOnce(seconds);
}

void SerialTransport::acknowledge() { thePort().owesAck = !write({&wire::kAck, 1}); }

void SerialTransport::trace(TextView label, TextView text) { mirvane::trace(label, text); }

}  // namespace mirvane
