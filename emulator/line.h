#pragma once

#include <cstdint>
#include <deque>
#include <limits>
#include <string>
#include <string_view>

#include "emulator/device.h"
#include "emulator/faults.h"

namespace mirvane::emulator {

/// Where a line sends its bytes.
class Outlet {
 public:
  virtual ~Outlet() = default;

  /// From now on bytes are sent to or dropped for `peer`; on a line with one till the peer is always empty.
  virtual void turnTo(const std::string& /*peer*/) {}
  /// Sends `bytes`, on a network as one datagram, at least `delay` milliseconds from now.
  virtual void send(std::string_view bytes, std::uint32_t delay) = 0;
  /// Sends `bytes` after `delay` milliseconds like a copy kept by the network: nothing waits for it, and it is not
  /// dropped.
  virtual void sendCopy(std::string_view bytes, std::uint32_t delay) = 0;
  /// The till starts over: what has not been sent to it yet is dropped.
  virtual void drop() = 0;
  /// Sends at once what has not been sent yet; true if the line disappears after it.
  virtual bool hurry() = 0;
  /// The line disappears after `delay` milliseconds, in turn after what is sent, together with everything then in
  /// transit. It comes back under the same name after `length` more milliseconds.
  virtual void unplug(std::uint32_t delay, std::uint32_t length) = 0;
};

/// The register's end of a link.
class Receiver {
 public:
  virtual ~Receiver() = default;

  /// Receives bytes from `peer`, who gets the answers; on a network, one datagram.
  virtual void feed(std::string_view bytes, const std::string& peer) = 0;
  /// Receives what rules have delayed and is now due. Returns the seconds until the next; infinity if there is none.
  virtual double takeHeld() { return std::numeric_limits<double>::infinity(); }
};

/// Number of bytes of the first unit in what a till sends: a frame, an interrupted frame, or a byte outside of frames;
/// 0 if the frame is incomplete.
std::size_t unitLength(std::string_view bytes);

/// A frame of the till and its outcome. With a fault that is not at the answer: what a rule has hit in transit.
struct Exchange {
  /// Without frame and checksum, code page 1253; empty for a damaged frame and for an ENQ.
  std::string command;
  /// The register's own reply without frame, whatever then happened to it on the wire; empty if there was none.
  std::string reply;
  Fault fault;
  /// The command was executed before.
  bool isRepeat = false;
  /// The sender; empty on a line with one till.
  std::string peer = {};
};

/// Observes a line.
class Witness {
 public:
  virtual ~Witness() = default;

  /// `exchange` has taken place; nothing of the answer has been sent yet.
  virtual void answered(const Exchange& exchange) = 0;
  /// The till has acknowledged the reply.
  virtual void acknowledged() = 0;
};

/// The register's side of one link to a till.
///
/// A till that missed a reply sends the same frame again. A frame identical to the last one executed therefore gets
/// that one's reply and is not executed again, until an ACK shows that the reply arrived. All peers share this memory.
class Line : public Receiver {
 public:
  /// What is acknowledged before the reply: nothing on a serial line; on a network some registers acknowledge each
  /// frame, others the ENQ before it.
  enum class Acknowledges { kNothing, kFrame, kEnq };

  /// A longer command is answered with "field too long", whatever it contains.
  static constexpr std::size_t kLongestCommand = 4096;

  Line(Device& device, Faults& faults, Outlet& outlet, Acknowledges acknowledges, ElapsedClock elapsed);

  void setWitness(Witness* witness) { witness_ = witness; }

  /// The latest command and its reply.
  struct Memory {
    std::string command, reply;
    bool awaitsAck = false;
  };
  const Memory& memory() const { return memory_; }
  /// Restores `memory` as the latest.
  void setMemory(Memory memory) { memory_ = std::move(memory); }

  void feed(std::string_view bytes, const std::string& peer) override;
  double takeHeld() override;
  /// Loses everything in transit.
  void dropHeld() { held_.clear(); }

 private:
  /// Something the till has sent that has not arrived yet.
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

  /// The beginning of a frame that has not fully arrived; a serial line delivers it in pieces.
  std::string unfinished_;
  /// In the order in which they are due.
  std::deque<Held> held_;
  /// Sender of the bytes being processed.
  std::string peer_;
  bool isInFrame_ = false;
  bool isUnplugged_ = false;
  std::string frame_;
  Memory memory_;
  Witness* witness_ = nullptr;
};

}  // namespace mirvane::emulator
