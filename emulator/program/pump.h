#pragma once

#include <boost/asio/steady_timer.hpp>
#include <cmath>
#include <string>

#include "emulator/program/outbox.h"
#include "emulator/program/transport.h"

namespace mirvane::emulator {

/// What all transports share: the register's end, and sending its bytes when they are due.
class Pump : public Transport {
 protected:
  explicit Pump(const Wiring& wiring)
      : outbox_(wiring.isPaced),
        receiver_(wiring.connect(outbox_)),
        timer_(wiring.loop),
        arrival_(wiring.loop),
        return_(wiring.loop) {}

  /// Sends the piece's bytes to its peer, and calls `transmitted` when the system has them: from the loop, or at once.
  virtual void transmit(Outbox::Piece piece) = 0;
  /// Closes the connection to the till.
  virtual void vanish() = 0;
  /// Reopens it under the same name. Throws TransportError.
  virtual void comeBack() = 0;

  void transmitted() { isSending_ = false; }
  void arrived(std::string_view bytes, const std::string& peer) {
    outbox_.received(bytes.size());
    receiver_->feed(bytes, peer);
    takeHeld();
  }
  void pump() {
    while (!isSending_ && !outbox_.empty()) {
      if (outbox_.due() > std::chrono::steady_clock::now()) {
        timer_.expires_at(outbox_.due());
        timer_.async_wait([this](const boost::system::error_code& error) {
          if (!error) pump();
        });
        return;
      }
      Outbox::Piece piece = outbox_.take();
      if (piece.away) return unplug(*piece.away);
      isSending_ = true;
      transmit(std::move(piece));
    }
  }
  unsigned drops() const { return outbox_.drops(); }
  /// How often the line has disappeared: operations started before that are void.
  unsigned unpluggings() const { return unpluggings_; }

 private:
  void takeHeld() {
    const double wait = receiver_->takeHeld();
    pump();
    if (std::isinf(wait)) return;
    arrival_.expires_after(std::chrono::microseconds(std::llround(wait * 1e6)));
    arrival_.async_wait([this](const boost::system::error_code& error) {
      if (!error) takeHeld();
    });
  }
  void unplug(std::chrono::milliseconds length) {
    ++unpluggings_;
    outbox_.clear();
    vanish();
    return_.expires_after(length);
    return_.async_wait([this](const boost::system::error_code& error) {
      if (error) return;
      isSending_ = false;
      comeBack();
    });
  }

  Outbox outbox_;
  std::unique_ptr<Receiver> receiver_;
  boost::asio::steady_timer timer_, arrival_, return_;
  bool isSending_ = false;
  unsigned unpluggings_ = 0;
};

}  // namespace mirvane::emulator
