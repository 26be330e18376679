#include "emulator/program/player.h"

#include <boost/asio/io_context.hpp>
#include <functional>
#include <iostream>

namespace mirvane::emulator {
namespace {

constexpr std::chrono::seconds kToTakeTheLastAnswer{1};

class Side : public Receiver {
 public:
  Side(Replay& replay, Outlet& outlet, std::function<void()> onFed)
      : replay_(replay), outlet_(outlet), onFed_(std::move(onFed)) {}

  void feed(std::string_view bytes, const std::string& peer) override {
    outlet_.turnTo(peer);
    replay_.feed(bytes, outlet_);
    onFed_();
  }

 private:
  Replay& replay_;
  Outlet& outlet_;
  const std::function<void()> onFed_;
};

}  // namespace

Player::Player(boost::asio::io_context& loop, std::string_view record) : loop_(loop), replay_(record), timer_(loop) {}

std::unique_ptr<Receiver> Player::connect(Outlet& outlet) {
  return std::make_unique<Side>(replay_, outlet, [this] { checkEnd(); });
}

void Player::checkEnd() {
  if (replay_.end() == seen_) return;
  seen_ = replay_.end();
  if (seen_ == Replay::End::kDifferent) return loop_.stop();
  timer_.expires_after(std::chrono::milliseconds(replay_.lastDelay()) + kToTakeTheLastAnswer);
  timer_.async_wait([this](const boost::system::error_code& error) {
    if (!error) loop_.stop();
  });
}

int Player::tell(bool isQuiet) {
  replay_.stop();
  const bool isGood = replay_.end() == Replay::End::kAsRecorded;
  if (!isGood || !isQuiet) (isGood ? std::cout : std::cerr) << replay_.report() << std::endl;
  if (isGood) return 0;
  return replay_.end() == Replay::End::kDifferent ? 3 : 4;
}

}  // namespace mirvane::emulator
