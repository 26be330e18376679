#include "emulator/loopback.h"

#include <algorithm>
#include <cmath>

namespace mirvane::emulator {
namespace {

std::unique_ptr<Receiver> lineTo(Device& device, Faults& faults, Mailbox& mailbox, Line::Acknowledges acknowledges,
                                 platform::Clock& clock) {
  return std::make_unique<Line>(device, faults, mailbox, acknowledges, [&clock] { return clock.elapsed(); });
}

class Recorded : public Receiver {
 public:
  Recorded(Replay& replay, Outlet& outlet) : replay_(replay), outlet_(outlet) {}
  void feed(std::string_view bytes, const std::string& /*peer*/) override { replay_.feed(bytes, outlet_); }

 private:
  Replay& replay_;
  Outlet& outlet_;
};

}  // namespace

void Mailbox::send(std::string_view bytes, std::uint32_t delay) {
  latest_ = std::max(latest_, clock_.elapsed() + delay / 1000.0);
  add({latest_, std::string(bytes), false});
}

void Mailbox::sendCopy(std::string_view bytes, std::uint32_t delay) {
  add({clock_.elapsed() + delay / 1000.0, std::string(bytes), true});
}

void Mailbox::drop() {
  std::erase_if(letters_, [](const Letter& letter) { return !letter.isCopy; });
  latest_ = 0;
}

bool Mailbox::hurry() {
  for (Letter& letter : letters_) letter.due = std::min(letter.due, clock_.elapsed());
  return std::any_of(letters_.begin(), letters_.end(), [](const Letter& letter) { return letter.away.has_value(); });
}

void Mailbox::unplug(std::uint32_t delay, std::uint32_t length) {
  latest_ = std::max(latest_, clock_.elapsed() + delay / 1000.0);
  add({latest_, {}, false, length / 1000.0});
}

bool Mailbox::hasDue() {
  settle();
  return !letters_.empty() && letters_.front().due <= clock_.elapsed();
}

bool Mailbox::isPlugged() {
  settle();
  return clock_.elapsed() >= back_;
}

int Mailbox::unpluggings() {
  settle();
  return unpluggings_;
}

void Mailbox::settle() {
  const auto found =
      std::find_if(letters_.begin(), letters_.end(), [](const Letter& letter) { return letter.away.has_value(); });
  if (found == letters_.end() || found->due > clock_.elapsed()) return;
  back_ = found->due + *found->away;
  ++unpluggings_;
  letters_.clear();
}

void Mailbox::add(Letter letter) {
  if (!isOurs_ && !letter.away) return;
  const auto isEarlier = [](const Letter& a, const Letter& b) { return a.due < b.due; };
  letters_.insert(std::upper_bound(letters_.begin(), letters_.end(), letter, isEarlier), std::move(letter));
}

LoopbackPort::LoopbackPort(Device& device, Faults& faults, platform::Clock& clock)
    : clock_(clock), mailbox_(clock), end_(lineTo(device, faults, mailbox_, Line::Acknowledges::kNothing, clock)) {}

LoopbackPort::LoopbackPort(Replay& replay, platform::Clock& clock)
    : clock_(clock), mailbox_(clock), end_(std::make_unique<Recorded>(replay, mailbox_)) {}

bool LoopbackPort::isUsable(std::int32_t handle) {
  return isConfigured_ && handle == handle_ && handle > 0 && unpluggings_ == mailbox_.unpluggings();
}

platform::Attempt<std::int32_t> LoopbackPort::open(TextView) {
  if (handle_ > 0 || !mailbox_.isPlugged()) return std::nullopt;
  input_.clear();
  isConfigured_ = false;
  unpluggings_ = mailbox_.unpluggings();
  return handle_ = ++lastHandle_;
}

bool LoopbackPort::setTimeouts(std::int32_t handle, const platform::LineTimeouts& timeouts) {
  if (handle != handle_ || handle <= 0) return false;
  timeouts_ = timeouts;
  return true;
}

platform::Granted LoopbackPort::configure(std::int32_t handle, std::string_view settings) {
  isConfigured_ = settings == "115200,n,8,1";
  return isConfigured_ = isUsable(handle);
}

platform::Attempt<std::size_t> LoopbackPort::write(std::int32_t handle, std::string_view bytes) {
  if (!isUsable(handle)) return std::nullopt;
  end_->feed(bytes, {});
  return bytes.size();
}

platform::Attempt<std::string> LoopbackPort::read(std::int32_t handle, std::size_t most) {
  if (!isUsable(handle)) return std::nullopt;
  const std::size_t multiplied = std::min(most, std::size_t{1000}) * timeouts_.readMultiplier;
  if (waiting(handle) == std::size_t{0}) {
    clock_.sleep(timeouts_.readConstant + static_cast<std::uint32_t>(multiplied));
  }
  if (!waiting(handle)) return std::nullopt;
  std::string bytes = input_.substr(0, most);
  input_.erase(0, bytes.size());
  return bytes;
}

platform::Attempt<std::size_t> LoopbackPort::waiting(std::int32_t handle) {
  if (!isUsable(handle)) return std::nullopt;
  collect();
  return input_.size();
}

bool LoopbackPort::close(std::int32_t handle) {
  if (handle != handle_ || handle <= 0) return false;
  handle_ = 0;
  return true;
}

void LoopbackPort::collect() {
  end_->takeHeld();
  for (; mailbox_.hasDue(); mailbox_.letters().pop_front()) input_ += mailbox_.letters().front().bytes;
}

LoopbackSockets::LoopbackSockets(Device& device, Faults& faults, platform::Clock& clock,
                                 Line::Acknowledges acknowledges)
    : clock_(clock), mailbox_(clock), end_(lineTo(device, faults, mailbox_, acknowledges, clock)) {}

LoopbackSockets::LoopbackSockets(Replay& replay, platform::Clock& clock)
    : clock_(clock), mailbox_(clock), end_(std::make_unique<Recorded>(replay, mailbox_)) {}

platform::Attempt<std::int32_t> LoopbackSockets::create() {
  mailbox_.letters().clear();
  isConnected_ = false;
  mailbox_.owner = std::to_string(++lastHandle_);
  return handle_ = lastHandle_;
}

platform::Granted LoopbackSockets::bind(std::int32_t handle, std::uint16_t) { return handle == handle_; }

platform::Granted LoopbackSockets::connect(std::int32_t handle, const std::string&, std::uint16_t) {
  return isConnected_ = handle == handle_;
}

platform::Granted LoopbackSockets::send(std::int32_t handle, std::string_view bytes) {
  if (handle != handle_ || !isConnected_) return false;
  // A datagram to an unplugged line is silently lost.
  if (mailbox_.isPlugged()) end_->feed(bytes, mailbox_.owner);
  return true;
}

platform::Attempt<std::string> LoopbackSockets::receive(std::int32_t handle, std::size_t most) {
  end_->takeHeld();
  if (handle != handle_ || !mailbox_.hasDue()) return std::nullopt;
  const std::string datagram = std::move(mailbox_.letters().front().bytes);
  mailbox_.letters().pop_front();
  return datagram.size() > most ? std::nullopt : platform::Attempt<std::string>(datagram);
}

bool LoopbackSockets::waitReadable(std::int32_t handle, std::int16_t seconds) {
  if (handle != handle_) return false;
  double toHeld = end_->takeHeld();
  for (double left = seconds; left > 0 && !mailbox_.hasDue(); toHeld = end_->takeHeld()) {
    const double due = mailbox_.letters().empty() ? HUGE_VAL : mailbox_.letters().front().due;
    const double wait = std::ceil(std::max(std::min({left, toHeld, due - clock_.elapsed()}), 0.0) * 1000);
    clock_.sleep(static_cast<std::uint32_t>(wait));
    left -= wait / 1000;
  }
  return mailbox_.hasDue();
}

void LoopbackSockets::shutDown(std::int32_t handle) {
  if (handle == handle_) handle_ = 0;
}

}  // namespace mirvane::emulator
