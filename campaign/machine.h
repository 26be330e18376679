#pragma once

#include <functional>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "campaign/strangers.h"
#include "emulator/loopback.h"

// A till's machine with a register at its line, in one process and in time of its own: nothing in it waits.
namespace mirvane::campaign {

enum class LineKind { kSerial, kNetworkFrame, kNetworkEnq };
constexpr LineKind kLines[] = {LineKind::kSerial, LineKind::kNetworkFrame, LineKind::kNetworkEnq};

/// Thrown out of a wait that has gone past the clock's limit. No exception that the component knows, so that it ends
/// the call whatever that would catch.
struct StillWaiting {};

/// Time that passes when somebody waits, and a little whenever somebody looks.
class VirtualClock : public platform::Clock {
 public:
  double secondsSinceMidnight() override;
  double elapsed() override;
  platform::LocalTime localTime() override;
  std::int64_t sinceEpoch() override { return static_cast<std::int64_t>(now * 1000); }
  int zoneAt(std::int64_t) override { return 0; }
  void sleep(std::uint32_t milliseconds) override { advance(milliseconds / 1000.0); }
  void advance(double seconds);

  double now = 0;
  /// Past this moment a wait throws StillWaiting.
  double limit = std::numeric_limits<double>::infinity();
  /// Called every few milliseconds.
  std::function<void()> passes;
};

/// An operator who closes every box and waits as long as asked.
class Operator : public platform::Screen {
 public:
  explicit Operator(VirtualClock& clock) : clock_(clock) {}

  void messageBox(TextView, std::uint32_t, TextView) override { letProgramRun(); }
  void waitWhile(const platform::WaitText& text, const std::function<bool(platform::WaitView&)>& tick) override;
  std::unique_ptr<platform::WaitView> showWait(const platform::WaitText&) override;
  std::unique_ptr<platform::JournalView> showJournal() override;
  void serveWindows() override { letProgramRun(); }
  void showTrace(bool) override {}
  void traceLine(TextView) override {}

  /// What the program does wherever its own code can run within a call: in a box, a wait, a journal, a window that is
  /// served.
  std::function<void()> program;

 private:
  class Window;
  void letProgramRun() const {
    if (program) program();
  }

  VirtualClock& clock_;
};

class Disk : public platform::Files {
 public:
  Text componentFolder() override { return u"C:\\till"; }
  std::optional<std::string> read(TextView path) override;
  bool makeFolder(TextView) override { return true; }
  bool replace(TextView path, std::string_view bytes) override;
  bool isFolder(TextView) override { return false; }
  std::vector<Text> fileNames(TextView) override { return {}; }
  std::optional<std::uint64_t> fileSize(TextView) override { return std::nullopt; }
  std::unique_ptr<platform::GrowingFile> grow(TextView) override { return nullptr; }
  void remove(TextView) override {}

  std::map<Text, std::string> files;
};

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

  std::int32_t open(TextView name) override;
  bool setTimeouts(std::int32_t handle, const platform::LineTimeouts& timeouts) override {
    return end_->setTimeouts(handle, timeouts);
  }
  bool configure(std::int32_t handle, std::string_view settings) override { return end_->configure(handle, settings); }
  std::optional<std::size_t> write(std::int32_t handle, std::string_view bytes) override;
  std::optional<std::string> read(std::int32_t handle, std::size_t most) override;
  std::optional<std::size_t> waiting(std::int32_t handle) override;
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

  bool send(std::int32_t handle, std::string_view bytes) override;
  std::optional<std::string> receive(std::int32_t handle, std::size_t most) override;
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
  Operator screen{clock};
  emulator::Device device;
  emulator::Faults faults;
  Tap tap;
  Disk disk;

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
