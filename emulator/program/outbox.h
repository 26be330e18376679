#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

#include "emulator/line.h"

namespace mirvane::emulator {

/// Bytes to be sent, each with its time and its peer: no peer waits for another. When paced, bytes take the time that a
/// line of wire::kBaud needs: the last byte of a piece is handed over when it would have crossed the wire, and a reply
/// starts after the command's bytes would have.
class Outbox : public Outlet {
 public:
  using Time = std::chrono::steady_clock::time_point;

  explicit Outbox(bool isPaced) : isPaced_(isPaced) {}

  void turnTo(const std::string& peer) override { peer_ = peer; }
  void send(std::string_view bytes, std::uint32_t delay) override;
  void sendCopy(std::string_view bytes, std::uint32_t delay) override;
  void drop() override;
  bool hurry() override;
  void unplug(std::uint32_t delay, std::uint32_t length) override;
  /// Drops everything, including copies.
  void clear();
  /// Counts `count` bytes that have arrived.
  void received(std::size_t count);

  bool empty() const { return pieces_.empty(); }
  /// When the next piece is due. The box must not be empty.
  Time due() const { return pieces_.front().due; }
  struct Piece {
    Time due;
    std::string peer, bytes;
    bool isCopy;
    /// The line disappears for this long.
    std::optional<std::chrono::milliseconds> away = {};
  };
  /// Removes and returns the next piece.
  Piece take();
  /// How often `drop` was called.
  unsigned drops() const { return drops_; }

 private:
  void add(Piece piece);
  /// When everything sent to the peer will have left; long ago if it has.
  Time end() const;

  const bool isPaced_;
  unsigned drops_ = 0;
  std::deque<Piece> pieces_;
  std::string peer_;
  /// When the wire has carried all input.
  Time inputEnd_{};
};

}  // namespace mirvane::emulator
