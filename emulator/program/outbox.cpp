#include "emulator/program/outbox.h"

#include <algorithm>
#include <utility>

#include "protocol/wire.h"

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
  Time start = std::max(Clock::now() + std::chrono::milliseconds(delay), end());
  if (!isPaced_) return add({start, peer_, std::string(bytes), false});
  start = std::max(start, inputEnd_ + std::chrono::milliseconds(delay));
  for (std::size_t begin = 0; begin < bytes.size(); begin += kPacedPiece) {
    const std::string_view piece = bytes.substr(begin, kPacedPiece);
    add({start + onWire(begin + piece.size()), peer_, std::string(piece), false});
  }
}

void Outbox::sendCopy(std::string_view bytes, std::uint32_t delay) {
  add({Clock::now() + std::chrono::milliseconds(delay), peer_, std::string(bytes), true});
}

void Outbox::drop() {
  std::erase_if(pieces_, [this](const Piece& piece) { return !piece.isCopy && piece.peer == peer_; });
  ++drops_;
}

bool Outbox::hurry() {
  const Time now = Clock::now();
  for (Piece& piece : pieces_) piece.due = std::min(piece.due, now);
  return std::any_of(pieces_.begin(), pieces_.end(), [](const Piece& piece) { return piece.away.has_value(); });
}

void Outbox::unplug(std::uint32_t delay, std::uint32_t length) {
  const Time start = std::max(Clock::now() + std::chrono::milliseconds(delay), end());
  add({start, peer_, {}, false, std::chrono::milliseconds(length)});
}

void Outbox::clear() {
  drop();
  pieces_.clear();
}

void Outbox::add(Piece piece) {
  const auto isEarlier = [](const Piece& a, const Piece& b) { return a.due < b.due; };
  pieces_.insert(std::upper_bound(pieces_.begin(), pieces_.end(), piece, isEarlier), std::move(piece));
}

Outbox::Time Outbox::end() const {
  const auto isTheirs = [this](const Piece& piece) { return !piece.isCopy && piece.peer == peer_; };
  const auto last = std::find_if(pieces_.rbegin(), pieces_.rend(), isTheirs);
  return last == pieces_.rend() ? Time() : last->due;
}

void Outbox::received(std::size_t count) { inputEnd_ = std::max(inputEnd_, Clock::now()) + onWire(count); }

Outbox::Piece Outbox::take() {
  Piece piece = std::move(pieces_.front());
  pieces_.pop_front();
  return piece;
}

}  // namespace mirvane::emulator
