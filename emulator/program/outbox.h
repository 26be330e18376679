#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

#include "emulator/line.h"

namespace mirvane::emulator {

/// Bytes on their way out, each with the moment it may leave and whom it is for: no peer waits for another. When paced,
/// bytes need the time that a line of wire::kBaud gives them: the last byte of a piece is handed over when it would
/// have crossed the wire, and a reply starts after the command's bytes would have.
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
  /// Drops all of it, copies too.
  void clear();
  /// Counts `count` bytes that have arrived.
  void received(std::size_t count);

  bool empty() const { return pieces_.empty(); }
  /// When the next piece is due. The box is not empty.
  Time due() const { return pieces_.front().due; }
  struct Piece {
    Time due;
    std::string peer, bytes;
    bool isCopy;
    /// The line vanishes for so long.
    std::optional<std::chrono::milliseconds> away = {};
  };
  /// Takes the next piece out.
  Piece take();
  /// How often `drop` was called.
  unsigned drops() const { return drops_; }

 private:
  void add(Piece piece);
  /// When everything that was sent to the peer will have left; long ago when it has.
  Time end() const;

  const bool isPaced_;
  unsigned drops_ = 0;
  std::deque<Piece> pieces_;
  std::string peer_;
  /// When the wire has carried everything that came in.
  Time inputEnd_{};
};

}  // namespace mirvane::emulator
