#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "campaign/strangers.h"
#include "embedding/virtual_machine.h"
#include "emulator/loopback.h"

// A till's machine with a register at its line, in one process and in time of its own: nothing in it waits.
namespace mirvane::campaign {

enum class LineKind { kSerial, kNetworkFrame, kNetworkEnq };
constexpr LineKind kLines[] = {LineKind::kSerial, LineKind::kNetworkFrame, LineKind::kNetworkEnq};

using embedding::StillWaiting;
using embedding::VirtualClock;

/// Looks on at a line.
struct Tap {
  /// The commands that the till sent, one for each frame, without STX, checksum and ETX.
  std::vector<std::string> commands;
  /// The bytes that came back after each.
  std::vector<std::size_t> answered;
  /// When the till sent a frame last.
  double lastFrame = 0;
  /// Called before and after each byte on the serial line, and each datagram, in both directions. What it throws ends
  /// the till there.
  std::function<void()> moment;
};

/// The serial line with a tap. An idle read takes a while longer than the line's time-outs, which saves turns.
class TappedPort : public platform::SerialPort {
 public:
  /// `stranger` sits behind the line from the moment on at which it is opened after it has gone.
  TappedPort(emulator::Device& device, emulator::Faults& faults, VirtualClock& clock, Tap& tap, Stranger stranger)
      : clock_(clock), tap_(tap), register_(device, faults, clock), stranger_(makeStranger(stranger, clock)) {}

  platform::Attempt<std::int32_t> open(TextView name) override;
  bool setTimeouts(std::int32_t handle, const platform::LineTimeouts& timeouts) override {
    return end_->setTimeouts(handle, timeouts);
  }
  platform::Granted configure(std::int32_t handle, std::string_view settings) override {
    return end_->configure(handle, settings);
  }
  platform::Attempt<std::size_t> write(std::int32_t handle, std::string_view bytes) override;
  platform::Attempt<std::string> read(std::int32_t handle, std::size_t most) override;
  platform::Attempt<std::size_t> waiting(std::int32_t handle) override;
  bool close(std::int32_t handle) override { return end_->close(handle); }
  /// The system closes what a program that was killed had open.
  void hangUp() { end_->close(handle_); }

 private:
  VirtualClock& clock_;
  Tap& tap_;
  emulator::LoopbackPort register_;
  const std::unique_ptr<platform::SerialPort> stranger_;
  /// Who sits behind the line.
  platform::SerialPort* end_ = &register_;
  bool hasGone_ = false;
  std::int32_t handle_ = 0;
};

class TappedSockets : public emulator::LoopbackSockets {
 public:
  TappedSockets(emulator::Device& device, emulator::Faults& faults, VirtualClock& clock, Tap& tap,
                emulator::Line::Acknowledges acknowledges)
      : LoopbackSockets(device, faults, clock, acknowledges), clock_(clock), tap_(tap) {}

  platform::Granted send(std::int32_t handle, std::string_view bytes) override;
  platform::Attempt<std::string> receive(std::int32_t handle, std::size_t most) override;
  /// Lets what rules have held up arrive.
  void takeHeld() { LoopbackSockets::receive(0, 0); }

 private:
  VirtualClock& clock_;
  Tap& tap_;
};

/// The machine, and the register as whoever stands beside it sees it.
class Machine {
 public:
  explicit Machine(LineKind line, Stranger stranger = Stranger::kNone);
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  TextView portName() const { return line_ == LineKind::kSerial ? u"COM1" : u"10.0.0.5:9100"; }
  /// Lets a card payment that is with its terminal come to its end.
  void settleCard();
  /// Lets what is on its way arrive, too.
  void settle();

  void hangUp() { port_.hangUp(); }

  // What the register booked.
  int itemsBooked(emulator::ItemKind kind, TextView description);
  /// Of `euros`; 0 for any amount.
  int paymentsBooked(TextView description, double euros = 0);
  int linesPrinted(TextView text);
  /// All receipts, the open one last.
  std::vector<const emulator::Receipt*> receipts();
  int cardCharges();
  /// The day's closings whose journal is not on the disk, in both folders, byte for byte.
  int journalsMissing();

  VirtualClock clock;
  embedding::VirtualOperator screen{clock};
  emulator::Device device;
  emulator::Faults faults;
  Tap tap;
  embedding::VirtualDisk disk;

 private:
  const LineKind line_;
  TappedPort port_;
  TappedSockets sockets_;
  /// The journal files that the register handed over.
  std::map<std::string, std::string> journal_;

 public:
  platform::Platform platform;
};

}  // namespace mirvane::campaign
