#pragma once

#include <boost/asio/steady_timer.hpp>
#include <memory>
#include <optional>
#include <string_view>

#include "emulator/replay.h"

namespace mirvane::emulator {

/// Replays a flight record, in place of the register, at the end of each transport.
class Player {
 public:
  /// Throws ReplayError. Ends `loop` when the replay is over and the till has had time to read the last answer.
  Player(boost::asio::io_context& loop, std::string_view record);

  /// For Wiring.
  std::unique_ptr<Receiver> connect(Outlet& outlet);
  /// To be called after the loop has ended. Prints how the replay went, unless quiet and everything was as recorded,
  /// and returns the exit code: 0 as recorded, 3 different, 4 as recorded up to where the record is cut off.
  int tell(bool isQuiet);

 private:
  void checkEnd();

  boost::asio::io_context& loop_;
  Replay replay_;
  boost::asio::steady_timer timer_;
  std::optional<Replay::End> seen_;
};

}  // namespace mirvane::emulator
