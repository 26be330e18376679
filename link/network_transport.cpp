#include "link/network_transport.h"

#include "link/network_endpoint.h"
#include "link/received.h"
#include "link/stopwatch.h"
#include "protocol/device_codes.h"
#include "protocol/wire.h"

namespace mirvane {
namespace {

constexpr int kAttempts = 4;
constexpr double kAnswerWithin = 1;          // seconds for the first datagram
constexpr double kReplyBeginsWithin = 0.02;  // after the ACK, before the link pauses
constexpr double kNextDatagramWithin = 0.3;  // of a reply that has begun
constexpr double kReplyWithin = 5;           // seconds after the device's ACK
constexpr double kLongestDrain = 1;
constexpr std::string_view kAcknowledgements = "\x06\x15";  // ACK, NAK
const std::string kRefused{wire::kNak};

bool waitForDatagram(Transport& line, double seconds) {
  const Stopwatch time;
  const double deadline = time.now() + seconds;
  do {
    if (line.hasDatagram()) return true;
  } while (time.now() < deadline);
  return false;
}

// Some registers acknowledge the ENQ, others the frame. Whatever else is there before the frame goes out is a late
// answer to an earlier command. The ACK or the NAK; empty when there is none.
std::string answerToEnquiry(Transport& line) {
  const Stopwatch time;
  const double deadline = time.now() + kLongestDrain;
  std::string answer;
  while (line.hasDatagram() && time.now() < deadline) {
    const std::string datagram = line.read();
    if (datagram.empty()) break;
    if (datagram.front() == wire::kAck || datagram.front() == wire::kNak) answer = datagram.front();
  }
  return answer;
}

// What comes behind the ACK; empty when nothing does. A NAK may come before the reply; where it is all that comes, the
// device refuses the frame whose ENQ it acknowledged.
std::string collectReply(Transport& line) {
  const Stopwatch time;
  const double acknowledged = time.now();
  bool isRefused = false;
  std::string reply;
  for (;;) {
    const auto hasBegun = [&reply] { return reply.find_first_not_of(kAcknowledgements) != std::string::npos; };
    while (!reply.ends_with(wire::kEtx) && reply.size() < kReplyLimit - kForgottenAtOnce &&
           waitForDatagram(line, hasBegun() ? kNextDatagramWithin : kReplyBeginsWithin)) {
      append(reply, line.read());
    }
    if (hasBegun()) return reply;
    isRefused = isRefused || reply.find(wire::kNak) != std::string::npos;
    reply.clear();
    theClock().sleep(500);
    if (time.now() - acknowledged > kReplyWithin) return isRefused ? kRefused : reply;
  }
}

}  // namespace

bool NetworkTransport::write(std::string_view bytes) { return portProp().TCPClass()->sendBytes(bytes); }

std::string NetworkTransport::read() { return portProp().TCPClass()->receiveBytes(); }

bool NetworkTransport::hasDatagram() {
  std::int16_t noWait = 0;
  return portProp().TCPClass()->IsDataAvailable(noWait);
}

Exchange NetworkTransport::exchange(const std::string& frame, std::int16_t /*timeOut*/, SilenceObserver& /*silence*/) {
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    if (attempt > 0) record(recorder::EventKind::kRepeat, attempt + 1);
    write({&wire::kEnq, 1});
    theClock().sleep(50);
    std::string first = answerToEnquiry(*this);
    // What the device does not want now is not sent.
    if (!first.starts_with(wire::kNak)) write(frame);
    // A datagram that cannot be read, or an empty one, is no answer either.
    if (first.empty() && waitForDatagram(*this, kAnswerWithin)) first = read();
    if (first.empty()) continue;
    const bool isAcknowledged = first.starts_with(wire::kAck);
    Exchange exchange;
    if (isAcknowledged) exchange.received = collectReply(*this);
    if (first.starts_with(wire::kNak) || exchange.received == kRefused) {
      drain();
      return {link_result::kNotNow, link_result::kNotNowText, {}};
    }
    if (isAcknowledged) write({&wire::kAck, 1});
    return exchange;
  }
  return {link_result::kNoAnswer, link_result::kNoAnswerText, {}};
}

}  // namespace mirvane
