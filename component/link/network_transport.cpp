#include "link/network_transport.h"

#include "link/frame.h"
#include "link/network_endpoint.h"
#include "link/received.h"
#include "link/stopwatch.h"
#include "protocol/device_codes.h"
#include "protocol/wire.h"

namespace mirvane {
namespace {

constexpr int kAttempts = 4;
constexpr double kAnswerWithin = 1;          // seconds for the register's ACK or NAK
constexpr double kReplyBeginsWithin = 0.02;  // after the ACK, before the link pauses
constexpr double kNextDatagramWithin = 0.3;  // of a reply that has started
constexpr double kReplyWithin = 5;           // seconds after the register's ACK
constexpr double kLongestDrain = 1;
constexpr std::string_view kAcknowledgements = "\x06\x15";  // ACK, NAK

bool isAcknowledgement(std::string_view datagram) {
  return datagram.starts_with(wire::kAck) || datagram.starts_with(wire::kNak);
}

class NetworkExchange {
 public:
  NetworkExchange(Transport& line, const std::string& frame, const Sending& sending, SilenceObserver& silence)
      : line_(line), frame_(frame), sending_(sending), silence_(silence) {}

  Exchange run() {
    Exchange exchange;
    for (;; ++exchange.attempts) {
      if (exchange.attempts > 1) record(recorder::EventKind::kRepeat, exchange.attempts);
      const std::string answer = attempt();
      if (answer.starts_with(wire::kAck)) {
        exchange.received = collectReply();
        if (exchange.received.empty() && isRefused_) return refused();
        if (exchange.received.empty()) exchange.received = std::move(overtaker_);
        return exchange;
      }
      if (answer.starts_with(wire::kNak)) return refused();
      if (exchange.attempts == kAttempts) break;
    }
    exchange.failure = link_result::kNoAnswer;
    exchange.text = link_result::kNoAnswerText;
    return exchange;
  }

 private:
  // Sends ENQ and the frame. Returns the register's ACK or NAK; empty if neither came in time or the system refused to
  // send.
  std::string attempt() {
    bool isSent = line_.write({&wire::kEnq, 1});
    pause(50);
    std::string answer = answerToEnquiry();
    // After a NAK the frame is not sent.
    if (!answer.starts_with(wire::kNak)) isSent = line_.write(frame_) && isSent;
    const double deadline = time_.now() + kAnswerWithin;
    while (time_.now() < deadline && (answer.empty() || !isSent)) {
      if (waitForDatagram(deadline - time_.now())) answer = pickAnswer(line_.read());
    }
    return isSent ? answer : std::string();
  }

  // Some registers acknowledge the ENQ, others the frame. Anything else received before the frame is sent is a late
  // answer to an earlier command.
  std::string answerToEnquiry() {
    const double deadline = time_.now() + kLongestDrain;
    std::string answer;
    while (line_.hasDatagram() && time_.now() < deadline) {
      const std::string datagram = line_.read();
      if (isAcknowledgement(datagram)) answer = datagram.front();
    }
    return answer;
  }

  // A reply may overtake its ACK. For a command that is not sent again it would then be the only answer.
  std::string pickAnswer(std::string datagram) {
    if (isAcknowledgement(datagram)) return datagram;
    if (!sending_.word.asks && isWholeReply(datagram)) overtaker_ = std::move(datagram);
    return {};
  }

  // What follows the ACK; empty if nothing does. A NAK may precede the reply. If only a NAK comes, the register refuses
  // the frame whose ENQ it acknowledged.
  std::string collectReply() {
    const double acknowledged = time_.now();
    std::string reply;
    for (;;) {
      const auto hasBegun = [&reply] { return reply.find_first_not_of(kAcknowledgements) != std::string::npos; };
      while (!reply.ends_with(wire::kEtx) && reply.size() < kReplyLimit - kForgottenAtOnce &&
             waitForDatagram(hasBegun() ? kNextDatagramWithin : kReplyBeginsWithin)) {
        append(reply, line_.read());
      }
      if (hasBegun()) return reply;
      isRefused_ = isRefused_ || reply.find(wire::kNak) != std::string::npos;
      reply.clear();
      if (time_.now() - acknowledged > kReplyWithin) return reply;
      pause(500);
    }
  }

  bool waitForDatagram(double seconds) {
    const double deadline = time_.now() + seconds;
    do {
      if (line_.hasDatagram()) return true;
      silence_.waits();
    } while (time_.now() < deadline);
    return false;
  }

  Exchange refused() {
    line_.drain();
    return {link_result::kNotNow, link_result::kNotNowText};
  }

  Transport& line_;
  const std::string& frame_;
  const Sending& sending_;
  SilenceObserver& silence_;
  const Stopwatch time_;
  bool isRefused_ = false;
  /// A complete reply that came before the ACK.
  std::string overtaker_;
};

}  // namespace

bool NetworkTransport::write(std::string_view bytes) { return portProp().TCPClass()->sendBytes(bytes); }

std::string NetworkTransport::read() { return portProp().TCPClass()->receiveBytes(); }

bool NetworkTransport::hasDatagram() {
  std::int16_t noWait = 0;
  return portProp().TCPClass()->IsDataAvailable(noWait);
}

Exchange NetworkTransport::exchange(const std::string& frame, const Sending& sending, SilenceObserver& silence) {
  return NetworkExchange(*this, frame, sending, silence).run();
}

// There are no brief questions on a network, because no line comes back there.
Exchange NetworkTransport::attempt(const std::string& /*frame*/, double /*seconds*/) {
  return {link_result::kNoAnswer, link_result::kNoAnswerText};
}

// If the system refuses to send the ACK, it is tried again at once: otherwise the register would take an equal next
// frame for a repetition.
void NetworkTransport::acknowledge() {
  if (!write({&wire::kAck, 1})) write({&wire::kAck, 1});
}

}  // namespace mirvane
