#pragma once

#include <boost/asio/steady_timer.hpp>
#include <string>

#include "emulator/program/outbox.h"
#include "emulator/program/transport.h"

namespace mirvane::emulator {

/// What all transports share: a line, and its bytes handed to the system as they fall due.
class Pump : public Transport {
 public:
  Line& line() override { return line_; }

 protected:
  Pump(const Wiring& wiring, Line::Acknowledges acknowledges)
      : outbox_(wiring.isPaced),
        line_(wiring.device, wiring.faults, outbox_, acknowledges, steadySeconds),
        timer_(wiring.loop) {}

  /// Sends `bytes`, and calls `transmitted` when the system has them: from the loop, or at once.
  virtual void transmit(std::string bytes) = 0;

  void transmitted() { isSending_ = false; }
  void arrived(std::string_view bytes) {
    outbox_.received(bytes.size());
    line_.feed(bytes);
    pump();
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
      isSending_ = true;
      transmit(outbox_.take());
    }
  }
  unsigned drops() const { return outbox_.drops(); }

 private:
  Outbox outbox_;
  Line line_;
  boost::asio::steady_timer timer_;
  bool isSending_ = false;
};

}  // namespace mirvane::emulator
