#include <algorithm>

#include "driver/wire.h"
#include "emulator/transport.h"

namespace mirvane::emulator {
namespace {

using Clock = std::chrono::steady_clock;

/// As many as leave the transmit buffer of a serial port at once, when paced.
constexpr std::size_t kPacedPiece = 8;

Clock::duration onWire(std::size_t bytes) {
  return std::chrono::nanoseconds(std::int64_t{10} * 1'000'000'000 * static_cast<std::int64_t>(bytes) / wire::kBaud);
}

}  // namespace

void Outbox::send(std::string_view bytes, std::uint32_t delay) {
  Time start = std::max(Clock::now() + std::chrono::milliseconds(delay), outputEnd_);
  if (!isPaced_) {
    pieces_.push_back({start, std::string(bytes)});
    outputEnd_ = start;
    return;
  }
  start = std::max(start, inputEnd_ + std::chrono::milliseconds(delay));
  for (std::size_t begin = 0; begin < bytes.size(); begin += kPacedPiece) {
    const std::string_view piece = bytes.substr(begin, kPacedPiece);
    pieces_.push_back({start + onWire(begin + piece.size()), std::string(piece)});
  }
  outputEnd_ = start + onWire(bytes.size());
}

void Outbox::drop() {
  pieces_.clear();
  outputEnd_ = {};
}

void Outbox::received(std::size_t count) { inputEnd_ = std::max(inputEnd_, Clock::now()) + onWire(count); }

void Outbox::sent(std::size_t count) {
  pieces_.front().bytes.erase(0, count);
  if (pieces_.front().bytes.empty()) pieces_.pop_front();
}

}  // namespace mirvane::emulator
