#include <algorithm>
#include <cmath>

#include "driver/fiscal_varlen_module2.h"
#include "driver/hex.h"
#include "driver/reply_fields.h"
#include "driver/result_codes.h"
#include "driver/wire.h"
#include "interface/c_port_prop.h"
#include "interface/module_state.h"
#include "interface/text.h"
#include "support/message_catalogue.h"

namespace mirvane {
namespace {

// The serial line's staging buffer has 256 bytes; a text that would fill it goes out in pieces.
constexpr std::size_t kLongestWrite = 255;
constexpr std::size_t kLongestRead = 64;
// A line that talks without end must eat neither the till's memory nor its time.
constexpr std::size_t kReplyLimit = std::size_t{1} << 20U;
constexpr std::size_t kForgottenAtOnce = std::size_t{1} << 16U;  // so that forgetting costs nothing a byte
constexpr double kLongestDrain = 1;                              // seconds

constexpr double kRepeatAfter = 10;         // seconds until an unanswered serial command is repeated
constexpr double kNetworkAnswerWithin = 1;  // seconds for the first datagram
constexpr int kNetworkAttempts = 4;
constexpr double kReplyBeginsWithin = 0.02;  // after the ACK, before the link pauses
constexpr double kNextDatagramWithin = 0.3;  // of a reply that has begun
constexpr double kReplyWithin = 5;           // seconds after the device's ACK
constexpr int kQuestionAttempts = 3;
constexpr std::string_view kAcknowledgements = "\x06\x15";  // ACK, NAK
const std::string kRefused{wire::kNak};

platform::Clock& clock() { return moduleState().platform->clock; }
platform::SerialPort& serial() { return moduleState().platform->serial; }

constexpr bool isLinkControl(char c) {
  return c == wire::kStx || c == wire::kEtx || c == wire::kEnq || c == wire::kAck || c == wire::kNak || c == wire::kCan;
}

// The command's bytes. A character that the device has no code for becomes "?", and so does a control byte of the link,
// which would end the frame in its middle.
std::string commandBytes(TextView command, bool& replaced) {
  std::string bytes = toCodePage(command, &replaced);
  for (char& c : bytes) {
    if (!isLinkControl(c)) continue;
    c = '?';
    replaced = true;
  }
  return bytes;
}

std::string frameOf(const std::string& command) {
  unsigned sum = 0;
  for (const char c : command) sum = (sum + static_cast<std::uint8_t>(c)) % 256;
  const unsigned checksum = sum % 100;
  return wire::kStx + command + static_cast<char>('0' + checksum / 10) + static_cast<char>('0' + checksum % 10) +
         wire::kEtx;
}

// Whether a command only asks, so that it may be asked again. Whatever moves something on, as reading the journal does,
// does not.
bool onlyAsks(TextView command) {
  constexpr std::array<TextView, 11> kWhole = {u"?/", u"v/", u"9/", u"0/", u"a/",  u"t/",
                                               u"h/", u"{/", u"e/", u"s/", u",/0/"};
  constexpr std::array<TextView, 4> kBegin = {u"5/99/", u"D/", u"k/", u"E/0/"};
  return std::find(kWhole.begin(), kWhole.end(), command) != kWhole.end() ||
         std::any_of(kBegin.begin(), kBegin.end(), [&](TextView begin) { return command.starts_with(begin); });
}

// A reply begins at the last STX with a result and status bytes behind it: what stands before is the rest of an attempt
// that was cut off, or noise. With no such STX it is all that came.
TextView replyIn(TextView received) {
  for (std::size_t end = received.size(); end > 0;) {
    const std::size_t at = received.rfind(wire::kStx, end - 1);
    if (at == TextView::npos) break;
    if (hasStatus(received.substr(at + 1))) return received.substr(at);
    end = at;
  }
  return received;
}

// A frame that began and did not end, which a network lets through.
bool isCut(TextView reply) { return reply.starts_with(wire::kStx) && !reply.ends_with(wire::kEtx); }

Text withoutControls(TextView reply) {
  Text clean(reply);
  std::erase_if(clean,
                [](char16_t c) { return c == wire::kStx || c == wire::kEtx || c == wire::kNak || c == wire::kAck; });
  return clean;
}

void append(std::string& reply, const std::string& chunk) {
  reply += chunk;
  if (reply.size() > kReplyLimit) reply.erase(0, reply.size() - kReplyLimit + kForgottenAtOnce);
}

}  // namespace

/// Time of day that goes on past midnight, so that a deadline holds whatever the hour.
class FiscalVarlenModule2::Stopwatch {
 public:
  double now() const { return timeOfDay_ + (clock().elapsed() - start_); }

 private:
  double timeOfDay_ = clock().secondsSinceMidnight();
  double start_ = clock().elapsed();
};

bool FiscalVarlenModule2::SendData(Text& text) { return writeBytes(toCodePage(text)); }

Text FiscalVarlenModule2::recData() { return fromCodePage(readBytes()); }

bool FiscalVarlenModule2::availData() {
  if (!portProp().tcpPort) return false;
  std::int16_t noWait = 0;
  return portProp().TCPClass()->IsDataAvailable(noWait);
}

void FiscalVarlenModule2::clearBuffer() {
  // No read of a serial line when nothing is there: it would cost its time-out.
  const auto unread = [this] {
    return portProp().tcpPort ? availData() : serial().waiting(moduleState().portHandle) > 0;
  };
  const Stopwatch time;
  const double deadline = time.now() + kLongestDrain;
  while (unread() && time.now() < deadline) readBytes();
}

bool FiscalVarlenModule2::writeBytes(const std::string& bytes) {
  if (portProp().tcpPort) return portProp().TCPClass()->SendData(fromCodePage(bytes));
  std::size_t written = 0;
  for (std::size_t at = 0; at < bytes.size(); at += kLongestWrite) {
    written += serial().write(moduleState().portHandle, std::string_view(bytes).substr(at, kLongestWrite));
  }
  return written > 0;
}

std::string FiscalVarlenModule2::readBytes() {
  if (portProp().tcpPort) {
    Value text;
    Value count;
    return portProp().TCPClass()->ReceiveData(text, count) ? toCodePage(std::get<Text>(text)) : std::string();
  }
  // Asking for no more than is there makes the read return at once; asking for one byte paces an idle line by the
  // port's read time-outs.
  const std::size_t waiting = serial().waiting(moduleState().portHandle);
  return serial().read(moduleState().portHandle, std::clamp<std::size_t>(waiting, 1, kLongestRead));
}

Text FiscalVarlenModule2::Send_(Text& command, std::int16_t& Result, Text& Exresult, bool& SupressError_,
                                Text& /*Pass*/, std::int16_t& timeOut) {
  const Text sent(trim(command));
  bool replaced = false;
  const std::string frame = frameOf(commandBytes(sent, replaced));
  const auto isOpen = [] { return moduleState().portHandle > 0; };
  if (isOpen() && replaced && !SupressError_) {
    moduleState().platform->screen.messageBox(u"INVALID CHARACTERS", platform::kInformationSystemModal,
                                              langMessage(message::kBoxTitle));
  }
  // Looked at behind the box: the program may have run on while it was open.
  if (!isOpen()) {
    Result = kNotOpen;
    Exresult = langMessage(message::kPortNotOpen);
    return {};
  }
  clearBuffer();
  for (int attempt = 1;; ++attempt) {
    std::string received;
    if (!portProp().tcpPort) {
      received = exchangeSerial(frame, Result, Exresult, timeOut);
    } else if (!exchangeNetwork(frame, Result, Exresult, received)) {
      return {};
    }
    const Text buffer = fromCodePage(received);
    const TextView reply = replyIn(buffer);
    lastReply_ = withoutControls(reply);
    if (!portProp().tcpPort) trace(u" reply     ", lastReply_);
    // What a piece of the journal lacks is lost: the device has moved on.
    const bool lacksPiece = isCut(reply) && sent == u"Q/";
    const bool lacksAnswer = (isCut(reply) || !hasStatus(lastReply_)) && onlyAsks(sent);
    if (!lacksPiece && !lacksAnswer) return complete(Result, Exresult);
    clearBuffer();
    if (lacksPiece || attempt == kQuestionAttempts) break;
  }
  lastReply_.clear();
  Result = kNoAnswer;
  Exresult = kNoAnswerText;
  return {};
}

// Repeats the whole exchange every ten seconds once the time-out has passed, for as long as it takes: a command may
// have reached the device, so nobody but the device can say how it ended. The reply buffer outlives an attempt, since
// the answer to an earlier one may be on its way.
std::string FiscalVarlenModule2::exchangeSerial(const std::string& frame, std::int16_t& Result, Text& Exresult,
                                                std::int16_t timeOut) {
  Result = 0;
  const Stopwatch time;
  const double overallDeadline = std::nearbyint(time.now() + timeOut);
  std::string reply;
  for (;;) {
    writeBytes({wire::kCan});
    writeBytes({wire::kCan});
    writeBytes({wire::kEnq});
    trace(u" ENQ");
    clock().sleep(1);
    writeBytes(frame);
    trace(u" send:     ", fromCodePage(frame));
    const double attemptDeadline = time.now() + kRepeatAfter;
    for (;;) {
      append(reply, readBytes());
      if (reply.ends_with(wire::kEtx)) {
        writeBytes({wire::kAck});
        return reply;
      }
      const double now = time.now();
      if (now <= overallDeadline) continue;
      if (now >= attemptDeadline) break;
      Result = 0;
    }
    Result = kNoAnswerToCommand;
    Exresult = u"Ο Φορολ. Εκτυπωτής δεν Απαντά σε εντολή !";
  }
}

// False when no reply was taken, with Result and Exresult telling why.
bool FiscalVarlenModule2::exchangeNetwork(const std::string& frame, std::int16_t& Result, Text& Exresult,
                                          std::string& reply) {
  for (int attempt = 0; attempt < kNetworkAttempts; ++attempt) {
    Result = 0;
    writeBytes({wire::kEnq});
    clock().sleep(50);
    std::string first = answerToEnquiry();
    // What the device does not want now is not sent.
    if (!first.starts_with(wire::kNak)) writeBytes(frame);
    // A datagram that cannot be read, or an empty one, is no answer either.
    if (first.empty() && waitForDatagram(kNetworkAnswerWithin)) first = readBytes();
    if (first.empty()) {
      Result = kNoAnswer;
      Exresult = kNoAnswerText;
      continue;
    }
    if (first.starts_with(wire::kAck)) reply = collectDatagrams();
    if (first.starts_with(wire::kNak) || reply == kRefused) {
      Result = kNotNow;
      Exresult = u"Αναμονή Απόκρισης Ταμειακής...";
      clearBuffer();
      return false;
    }
    if (first.starts_with(wire::kAck)) writeBytes({wire::kAck});
    return true;
  }
  return false;
}

// Some registers acknowledge the ENQ, others the frame. Whatever else is there before the frame goes out is a late
// answer to an earlier command. The ACK or the NAK; empty when there is none.
std::string FiscalVarlenModule2::answerToEnquiry() {
  const Stopwatch time;
  const double deadline = time.now() + kLongestDrain;
  std::string answer;
  while (availData() && time.now() < deadline) {
    const std::string datagram = readBytes();
    if (datagram.empty()) break;
    if (datagram.front() == wire::kAck || datagram.front() == wire::kNak) answer = datagram.front();
  }
  return answer;
}

// A NAK may come before the reply; where it is all that comes, the device refuses the frame whose ENQ it acknowledged.
std::string FiscalVarlenModule2::collectDatagrams() {
  const Stopwatch time;
  const double acknowledged = time.now();
  bool isRefused = false;
  std::string reply;
  for (;;) {
    const auto hasBegun = [&reply] { return reply.find_first_not_of(kAcknowledgements) != std::string::npos; };
    while (!reply.ends_with(wire::kEtx) && reply.size() < kReplyLimit - kForgottenAtOnce &&
           waitForDatagram(hasBegun() ? kNextDatagramWithin : kReplyBeginsWithin)) {
      append(reply, readBytes());
    }
    if (hasBegun()) return reply;
    isRefused = isRefused || reply.find(wire::kNak) != std::string::npos;
    reply.clear();
    clock().sleep(500);
    if (time.now() - acknowledged > kReplyWithin) return isRefused ? kRefused : reply;
  }
}

bool FiscalVarlenModule2::waitForDatagram(double seconds) {
  const Stopwatch time;
  const double deadline = time.now() + seconds;
  do {
    if (availData()) return true;
  } while (time.now() < deadline);
  return false;
}

// Takes the outcome from the last reply.
Text FiscalVarlenModule2::complete(std::int16_t& Result, Text& Exresult) {
  Exresult = lastReply_;
  Result = static_cast<std::int16_t>(hexValue(trim(TextView(lastReply_).substr(0, 2))));
  decodeReply(Exresult);
  if (!portProp().tcpPort) trace(u" exres     ", Exresult);
  clearBuffer();
  return lastReply_;
}

}  // namespace mirvane
