#include <algorithm>
#include <cmath>

#include "driver/fiscal_varlen_module2.h"
#include "driver/hex.h"
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
constexpr double kNextDatagramWithin = 0.02;
constexpr double kReplyWithin = 5;  // seconds after the device's ACK

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
  bool replaced = false;
  const std::string frame = frameOf(commandBytes(trim(command), replaced));
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
  std::string reply;
  if (!portProp().tcpPort) {
    reply = exchangeSerial(frame, Result, Exresult, timeOut);
  } else if (!exchangeNetwork(frame, Result, Exresult, reply)) {
    return {};
  }
  return complete(reply, Result, Exresult);
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
    writeBytes(frame);
    // A datagram that cannot be read, or an empty one, is no answer either.
    const std::string first = waitForDatagram(kNetworkAnswerWithin) ? readBytes() : std::string();
    if (first.empty()) {
      Result = kNoAnswer;
      Exresult = u"H ταμειακή δεν Απαντά!";
      continue;
    }
    if (first.starts_with(wire::kNak)) {
      Result = kNotNow;
      Exresult = u"Αναμονή Απόκρισης Ταμειακής...";
      clearBuffer();
      return false;
    }
    if (first.starts_with(wire::kAck)) {
      reply = collectDatagrams();
      writeBytes({wire::kAck});
    }
    return true;
  }
  return false;
}

std::string FiscalVarlenModule2::collectDatagrams() {
  const Stopwatch time;
  const double acknowledged = time.now();
  std::string reply;
  for (;;) {
    while (!reply.ends_with(wire::kEtx) && reply.size() < kReplyLimit - kForgottenAtOnce &&
           waitForDatagram(kNextDatagramWithin)) {
      append(reply, readBytes());
    }
    if (!reply.empty() && reply != std::string{wire::kNak}) return reply;
    reply.clear();
    clock().sleep(500);
    if (time.now() - acknowledged > kReplyWithin) return reply;
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

Text FiscalVarlenModule2::complete(const std::string& reply, std::int16_t& Result, Text& Exresult) {
  std::string clean = reply;
  std::erase_if(clean, [](char c) { return c == wire::kStx || c == wire::kEtx || c == wire::kNak || c == wire::kAck; });
  lastReply_ = fromCodePage(clean);
  Exresult = lastReply_;
  const bool isSerial = !portProp().tcpPort;
  if (isSerial) trace(u" reply     ", lastReply_);
  Result = static_cast<std::int16_t>(hexValue(trim(TextView(lastReply_).substr(0, 2))));
  decodeReply(Exresult);
  if (isSerial) trace(u" exres     ", Exresult);
  clearBuffer();
  return lastReply_;
}

}  // namespace mirvane
