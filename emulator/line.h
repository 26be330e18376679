#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "emulator/device.h"
#include "emulator/faults.h"

namespace mirvane::emulator {

/// Where a line puts its bytes.
class Outlet {
 public:
  virtual ~Outlet() = default;

  /// Sends `bytes`, on a network as one datagram, no sooner than `delay` milliseconds from now.
  virtual void send(std::string_view bytes, std::uint32_t delay) = 0;
  /// Sends `bytes` `delay` milliseconds from now, as a network does that has kept a copy: nothing that is sent waits
  /// for it, and it is not dropped.
  virtual void sendCopy(std::string_view bytes, std::uint32_t delay) = 0;
  /// The till begins anew: what has not been sent yet is not sent any more.
  virtual void drop() = 0;
};

/// The device's side of one link to a till.
///
/// A till that has missed a reply sends the same frame again. So a frame identical to the one executed last is
/// answered with that one's reply, and not executed again, until an ACK has told that the reply arrived.
class Line {
 public:
  /// What an ACK is sent for, before the reply: nothing on a serial line; on a network there are registers that
  /// acknowledge each frame, and others that acknowledge the ENQ ahead of it.
  enum class Acknowledges { kNothing, kFrame, kEnq };

  /// A longer command is answered with "field too long", whatever it says.
  static constexpr std::size_t kLongestCommand = 4096;

  Line(Device& device, Faults& faults, Outlet& outlet, Acknowledges acknowledges, ElapsedClock elapsed);

  /// Takes bytes as they arrive; on a network, one datagram.
  void feed(std::string_view bytes);

 private:
  void take(char byte);
  void takeFrame();
  void answer(const std::string& command);
  std::string execute(const std::string& command, const Fault& fault);
  void sendReply(std::string reply, const Fault& fault);

  Device& device_;
  Faults& faults_;
  Outlet& outlet_;
  const Acknowledges acknowledges_;
  const ElapsedClock elapsed_;

  bool isInFrame_ = false;
  std::string frame_;
  std::string lastCommand_;
  std::string lastReply_;
  bool awaitsAck_ = false;
};

}  // namespace mirvane::emulator
