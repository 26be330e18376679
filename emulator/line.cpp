#include "emulator/line.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>

#include "protocol/wire.h"

namespace mirvane::emulator {
namespace {

using Kind = Fault::Kind;
using At = Fault::At;

// Longer than any frame that a till sends.
constexpr std::size_t kLongestFrame = 65'536;
constexpr char kFrameEnds[] = {wire::kEtx, wire::kStx, wire::kEnq, wire::kCan, '\0'};

/// What the till has sent; nothing for what no rule strikes.
std::optional<At> kindOf(std::string_view unit) {
  if (unit.front() == wire::kStx && unit.back() == wire::kEtx) return At::kTillFrame;
  if (unit == std::string_view(&wire::kAck, 1)) return At::kTillAck;
  if (unit == std::string_view(&wire::kEnq, 1)) return At::kTillEnq;
  return std::nullopt;
}

/// `bytes`, at least one, as the fault leaves them.
std::string damaged(std::string bytes, const Fault& fault) {
  switch (fault.kind) {
    case Kind::kHalf:
      bytes.resize(bytes.size() / 2);
      break;
    case Kind::kCut:
      bytes.resize(std::min<std::size_t>(fault.number, bytes.size() - 1));
      break;
    case Kind::kNoise:
      bytes.insert(0, fault.bytes);
      break;
    case Kind::kNoiseWithin:
      bytes.insert(bytes.size() / 2, fault.bytes);
      break;
    default:
      break;
  }
  return bytes;
}

/// The two digits that close the frame of `command`.
std::string checksum(std::string_view command) {
  const unsigned sum = std::accumulate(command.begin(), command.end(), 0U, [](unsigned total, char c) {
    return (total + static_cast<unsigned char>(c)) % 256;
  });
  return {static_cast<char>('0' + sum % 100 / 10), static_cast<char>('0' + sum % 10)};
}

}  // namespace

std::size_t unitLength(std::string_view bytes) {
  if (bytes.empty() || bytes.front() != wire::kStx) return std::min<std::size_t>(bytes.size(), 1);
  const std::size_t end = bytes.find_first_of(kFrameEnds, 1);
  if (end == std::string_view::npos) return bytes.size() > kLongestFrame ? bytes.size() : 0;
  return bytes[end] == wire::kEtx ? end + 1 : end;
}

Line::Line(Device& device, Faults& faults, Outlet& outlet, Acknowledges acknowledges, ElapsedClock elapsed)
    : device_(device), faults_(faults), outlet_(outlet), acknowledges_(acknowledges), elapsed_(std::move(elapsed)) {}

void Line::feed(std::string_view bytes, const std::string& peer) {
  isUnplugged_ = false;
  takeHeld();
  const std::string sent = std::exchange(unfinished_, {}).append(bytes);
  std::string_view rest = sent;
  for (std::size_t length = unitLength(rest); length > 0 && !isUnplugged_; length = unitLength(rest)) {
    carry(std::string(rest.substr(0, length)), peer);
    rest.remove_prefix(length);
  }
  if (rest.empty() || isUnplugged_) return;
  // The missing part of a datagram never arrives.
  if (isNetwork()) {
    carry(std::string(rest), peer);
  } else {
    unfinished_ = rest;
  }
}

void Line::carry(const std::string& unit, const std::string& peer) {
  const Fault fault = faultFor(unit, peer);
  if (fault.kind == Kind::kLost) return;
  arriveAfter(fault.kind == Kind::kDelayed ? fault.number : 0, damaged(unit, fault), peer);
  if (fault.kind == Kind::kDuplicate && !isUnplugged_) arriveAfter(fault.number, unit, peer);
}

Fault Line::faultFor(const std::string& unit, const std::string& peer) {
  const auto at = kindOf(unit);
  if (!at || !faults_.strikes(*at)) return {};
  std::string command = *at == At::kTillAck ? memory_.command : "";
  if (unit.size() >= 4) command = unit.substr(1, unit.size() - 4);
  Fault fault = faults_.take(command, false, elapsed_(), *at);
  if (fault.kind != Kind::kNone && witness_) witness_->answered({command, "", fault, false, peer});
  return fault;
}

void Line::arriveAfter(std::uint32_t delay, const std::string& bytes, const std::string& peer) {
  // Bytes on a serial line keep their order; datagrams do not.
  const bool waits = !isNetwork() && !held_.empty();
  if (delay == 0 && !waits) return arrive(bytes, peer);
  double due = elapsed_() + delay / 1000.0;
  if (waits) due = std::max(due, held_.back().due);
  const auto isEarlier = [](const Held& a, const Held& b) { return a.due < b.due; };
  Held held{due, bytes, peer};
  held_.insert(std::upper_bound(held_.begin(), held_.end(), held, isEarlier), std::move(held));
}

double Line::takeHeld() {
  while (!held_.empty()) {
    const double wait = held_.front().due - elapsed_();
    if (wait > 0) return wait;
    const Held held = std::move(held_.front());
    held_.pop_front();
    arrive(held.bytes, held.peer);
  }
  return Receiver::takeHeld();
}

void Line::arrive(std::string_view bytes, const std::string& peer) {
  outlet_.turnTo(peer_ = peer);
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
    if (witness_) witness_->answered({"", "", {}, false, peer_});
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
  if (witness_) witness_->answered({command, isExecuted ? memory_.reply : "", fault, isRepeat, peer_});
  if (fault.isUnplugging()) {
    isUnplugged_ = true;
    dropHeld();
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
    case Kind::kDelayed:
      if (!isNetwork()) return outlet_.send(reply, fault.number);
      return outlet_.sendCopy(reply, fault.number);
    case Kind::kShort:
      reply = std::string{wire::kStx, reply[1], reply[2], wire::kEtx};
      break;
    case Kind::kStatus:
      // A reply that a rule has substituted may be shorter than any real one.
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
  outlet_.send(damaged(std::move(reply), fault), fault.kind == Kind::kLate ? fault.number : 0);
}

}  // namespace mirvane::emulator
