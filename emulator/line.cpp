#include "emulator/line.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "protocol/wire.h"

namespace mirvane::emulator {
namespace {

using Kind = Fault::Kind;

/// The two digits that close the frame of `command`.
std::string checksum(std::string_view command) {
  const unsigned sum = std::accumulate(command.begin(), command.end(), 0U, [](unsigned total, char c) {
    return (total + static_cast<unsigned char>(c)) % 256;
  });
  return {static_cast<char>('0' + sum % 100 / 10), static_cast<char>('0' + sum % 10)};
}

}  // namespace

Line::Line(Device& device, Faults& faults, Outlet& outlet, Acknowledges acknowledges, ElapsedClock elapsed)
    : device_(device), faults_(faults), outlet_(outlet), acknowledges_(acknowledges), elapsed_(std::move(elapsed)) {}

void Line::feed(std::string_view bytes) {
  if (faults_.switches.isOff) {
    isInFrame_ = false;
    outlet_.drop();
    return;
  }
  isUnplugged_ = false;
  for (const char byte : bytes) {
    if (!isUnplugged_) take(byte);
  }
}

void Line::take(char byte) {
  switch (byte) {
    case wire::kCan:
    case wire::kEnq:
      isInFrame_ = false;
      outlet_.drop();
      if (byte == wire::kEnq && acknowledges_ == Acknowledges::kEnq) outlet_.send({&wire::kAck, 1}, 0);
      break;
    case wire::kStx:
      isInFrame_ = true;
      frame_.clear();
      break;
    case wire::kEtx:
      if (isInFrame_) takeFrame();
      isInFrame_ = false;
      break;
    case wire::kAck:
      if (!isInFrame_ && std::exchange(memory_.awaitsAck, false) && witness_) witness_->acknowledged();
      break;
    default:
      // One byte more than any good frame holds is enough to know that this one is too long.
      if (isInFrame_ && frame_.size() <= kLongestCommand + 2) frame_.push_back(byte);
  }
}

void Line::takeFrame() {
  if (frame_.size() > kLongestCommand + 2) {
    sendReply(wire::kStx + device_.refuse(Code::kFieldTooLong) + wire::kEtx, {});
    return;
  }
  const std::size_t length = frame_.size() < 2 ? 0 : frame_.size() - 2;
  if (frame_.size() < 2 || frame_.substr(length) != checksum(frame_.substr(0, length))) {
    if (witness_) witness_->answered({});
    outlet_.send({&wire::kNak, 1}, 0);
    return;
  }
  answer(frame_.substr(0, length));
}

void Line::answer(const std::string& command) {
  const bool isRepeat = memory_.awaitsAck && command == memory_.command;
  const Fault fault = faults_.take(command, isRepeat, elapsed_());
  const bool isExecuted = fault.kind != Kind::kSilence && fault.kind != Kind::kNak && fault.kind != Kind::kUnplug;
  if (isExecuted && !isRepeat) memory_ = {command, execute(command, fault), true};
  if (witness_) witness_->answered({command, isExecuted ? memory_.reply : "", fault, isRepeat});
  if (fault.isUnplugging()) {
    isUnplugged_ = true;
    outlet_.drop();
    outlet_.unplug(0, fault.number * 1000);
    return;
  }
  if (fault.kind == Kind::kNak) outlet_.send({&wire::kNak, 1}, 0);
  if (isExecuted && fault.kind != Kind::kLost) sendReply(wire::kStx + memory_.reply + wire::kEtx, fault);
}

std::string Line::execute(const std::string& command, const Fault& fault) {
  const Faults::Switches& switches = faults_.switches;
  if (fault.kind == Kind::kReply) return fault.bytes;
  if (fault.kind == Kind::kCode) return device_.refuse(static_cast<Code>(fault.number), switches.printer);
  if (switches.isBusy) return device_.refuse(Code::kBusy, switches.printer);
  const std::uint32_t printer = fault.kind == Kind::kPrinter ? fault.number : 0;
  return device_.execute(command, static_cast<std::uint8_t>(printer | switches.printer));
}

void Line::sendReply(std::string reply, const Fault& fault) {
  if (acknowledges_ == Acknowledges::kFrame) outlet_.send({&wire::kAck, 1}, 0);
  switch (fault.kind) {
    case Kind::kAckOnly:
      return;
    case Kind::kSplit:
      outlet_.send(reply.substr(0, reply.size() / 2), 0);
      outlet_.send(reply.substr(reply.size() / 2), fault.number);
      return;
    case Kind::kDuplicate:
      outlet_.sendCopy(reply, fault.number);
      break;
    case Kind::kHalf:
      reply.resize(reply.size() / 2);
      break;
    case Kind::kCut:
      reply.resize(std::min<std::size_t>(fault.number, reply.size() - 1));
      break;
    case Kind::kShort:
      reply = std::string{wire::kStx, reply[1], reply[2], wire::kEtx};
      break;
    case Kind::kNoise:
      reply.insert(0, fault.bytes);
      break;
    case Kind::kNoiseWithin:
      reply.insert(reply.size() / 2, fault.bytes);
      break;
    case Kind::kStatus:
      // A reply that a rule has put in another's place may be shorter than any true one.
      if (reply.size() >= 6) reply.replace(4, 2, fault.bytes);
      break;
    case Kind::kEndless: {
      reply.pop_back();
      outlet_.send(reply, 0);
      // In pieces that fit a datagram.
      for (std::uint32_t left = fault.number; left > 0;) {
        const std::uint32_t piece = std::min(left, std::uint32_t{1024});
        outlet_.send(std::string(piece, 'x'), 0);
        left -= piece;
      }
      return;
    }
    default:
      break;
  }
  outlet_.send(reply, fault.kind == Kind::kLate ? fault.number : 0);
}

}  // namespace mirvane::emulator
