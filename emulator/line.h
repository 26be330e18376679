#pragma once

#include <cstdint>
#include <deque>
#include <limits>
#include <string>
#include <string_view>

#include "emulator/device.h"
#include "emulator/faults.h"

namespace mirvane::emulator {

/// Where a line puts its bytes.
class Outlet {
 public:
  virtual ~Outlet() = default;

  /// What is sent or dropped from now on is `peer`'s; on a line with one till at its end there is none but the empty
  /// one.
  virtual void turnTo(const std::string& /*peer*/) {}
  /// Sends `bytes`, on a network as one datagram, no sooner than `delay` milliseconds from now.
  virtual void send(std::string_view bytes, std::uint32_t delay) = 0;
  /// Sends `bytes` `delay` milliseconds from now, as a network does that has kept a copy: nothing that is sent waits
  /// for it, and it is not dropped.
  virtual void sendCopy(std::string_view bytes, std::uint32_t delay) = 0;
  /// The till begins anew: what has not been sent to it yet is not sent any more.
  virtual void drop() = 0;
  /// What has not been sent yet is sent now. True when the line vanishes behind it.
  virtual bool hurry() = 0;
  /// The line vanishes `delay` milliseconds from now, in its turn behind what is sent, with whatever comes in or waits
  /// to go out then. It comes back under the same name when `length` further milliseconds have passed.
  virtual void unplug(std::uint32_t delay, std::uint32_t length) = 0;
};

/// What stands at the register's end of a link.
class Receiver {
 public:
  virtual ~Receiver() = default;

  /// Takes bytes as they come from `peer`, who gets the answers; on a network, one datagram.
  virtual void feed(std::string_view bytes, const std::string& peer) = 0;
  /// Takes what rules have held up on its way and is due now. Seconds until there is more; infinity when there is none.
  virtual double takeHeld() { return std::numeric_limits<double>::infinity(); }
};

/// How many bytes the first unit has of what a till sends: a frame, a frame that was broken off, or a byte outside of
/// any; 0 when the frame is not whole yet.
std::size_t unitLength(std::string_view bytes);

/// A frame of the till, and what came of it. With a fault that is not at the answer: what a rule has struck on its way.
struct Exchange {
  /// Bare, code page 1253; empty for a frame that was spoiled, and for an ENQ.
  std::string command;
  /// The register's own, bare, whatever then happened to it on the wire; empty when it made none.
  std::string reply;
  Fault fault;
  /// The command had been executed before.
  bool isRepeat = false;
  /// Who sent it; empty on a line with one till at its end.
  std::string peer = {};
};

/// Looks on at a line.
class Witness {
 public:
  virtual ~Witness() = default;

  /// What `exchange` tells has happened; nothing of it has been sent yet.
  virtual void answered(const Exchange& exchange) = 0;
  /// The till has told that it has the reply.
  virtual void acknowledged() = 0;
};

/// The device's side of one link to a till.
///
/// A till that has missed a reply sends the same frame again. So a frame identical to the one executed last is
/// answered with that one's reply, and not executed again, until an ACK has told that the reply arrived. All peers
/// share this memory.
class Line : public Receiver {
 public:
  /// What an ACK is sent for, before the reply: nothing on a serial line; on a network there are registers that
  /// acknowledge each frame, and others that acknowledge the ENQ ahead of it.
  enum class Acknowledges { kNothing, kFrame, kEnq };

  /// A longer command is answered with "field too long", whatever it says.
  static constexpr std::size_t kLongestCommand = 4096;

  Line(Device& device, Faults& faults, Outlet& outlet, Acknowledges acknowledges, ElapsedClock elapsed);

  void setWitness(Witness* witness) { witness_ = witness; }

  /// The latest command and its reply.
  struct Memory {
    std::string command, reply;
    bool awaitsAck = false;
  };
  const Memory& memory() const { return memory_; }
  /// As if `memory` had been the latest.
  void setMemory(Memory memory) { memory_ = std::move(memory); }

  void feed(std::string_view bytes, const std::string& peer) override;
  double takeHeld() override;
  /// What is on its way never arrives.
  void dropHeld() { held_.clear(); }

 private:
  /// What the till has sent and has not arrived yet.
  struct Held {
    double due;
    std::string bytes, peer;
  };

  bool isNetwork() const { return acknowledges_ != Acknowledges::kNothing; }
  void carry(const std::string& unit, const std::string& peer);
  Fault faultFor(const std::string& unit, const std::string& peer);
  void arriveAfter(std::uint32_t delay, const std::string& bytes, const std::string& peer);
  void arrive(std::string_view bytes, const std::string& peer);
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

  /// The beginning of a frame that is on its way; a serial line brings it in pieces.
  std::string unfinished_;
  /// By the time at which they are due.
  std::deque<Held> held_;
  /// Who sent what is taken now.
  std::string peer_;
  bool isInFrame_ = false;
  bool isUnplugged_ = false;
  std::string frame_;
  Memory memory_;
  Witness* witness_ = nullptr;
};

}  // namespace mirvane::emulator
