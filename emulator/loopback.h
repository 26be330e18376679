#pragma once

#include <deque>
#include <memory>
#include <string>

#include "emulator/line.h"
#include "emulator/replay.h"
#include "platform/ports.h"

// The shortest way from a driver to the register: in process, without threads. Bytes reach the register within the
// call, and its answer can be read at once, or when `clock` has reached its time.
namespace mirvane::emulator {

/// Holds what the register has sent until it is due.
class Mailbox : public Outlet {
 public:
  explicit Mailbox(platform::Clock& clock) : clock_(clock) {}

  void turnTo(const std::string& peer) override { isOurs_ = peer == owner; }
  void send(std::string_view bytes, std::uint32_t delay) override;
  void sendCopy(std::string_view bytes, std::uint32_t delay) override;
  void drop() override;
  bool hurry() override;
  void unplug(std::uint32_t delay, std::uint32_t length) override;

  /// The only peer whose bytes are kept; those for others are lost.
  std::string owner;
  bool hasDue();
  /// False while the line is unplugged.
  bool isPlugged();
  /// How often the line has disappeared.
  int unpluggings();
  struct Letter {
    double due;
    std::string bytes;
    bool isCopy;
    /// The line disappears for this many seconds.
    std::optional<double> away = {};
  };
  std::deque<Letter>& letters() { return letters_; }

 private:
  void add(Letter letter);
  /// Makes the line disappear when its time has come.
  void settle();

  platform::Clock& clock_;
  bool isOurs_ = true;
  double latest_ = 0;
  double back_ = 0;
  int unpluggings_ = 0;
  std::deque<Letter> letters_;
};

/// A serial line with the register at its end. It can be opened under any name, once at a time, and works if configured
/// like the register's line. After it has disappeared, it works once it is closed and reopened.
class LoopbackPort : public platform::SerialPort {
 public:
  LoopbackPort(Device& device, Faults& faults, platform::Clock& clock);
  /// With a replayed record at its end.
  LoopbackPort(Replay& replay, platform::Clock& clock);

  platform::Attempt<std::int32_t> open(TextView name) override;
  bool setTimeouts(std::int32_t handle, const platform::LineTimeouts& timeouts) override;
  platform::Granted configure(std::int32_t handle, std::string_view settings) override;
  platform::Attempt<std::size_t> write(std::int32_t handle, std::string_view bytes) override;
  platform::Attempt<std::string> read(std::int32_t handle, std::size_t most) override;
  platform::Attempt<std::size_t> waiting(std::int32_t handle) override;
  bool close(std::int32_t handle) override;

 private:
  bool isUsable(std::int32_t handle);
  /// Moves what is due to `input_`.
  void collect();

  platform::Clock& clock_;
  Mailbox mailbox_;
  std::unique_ptr<Receiver> end_;
  std::int32_t handle_ = 0;
  std::int32_t lastHandle_ = 0;
  /// How often the line had disappeared when it was opened.
  int unpluggings_ = 0;
  bool isConfigured_ = false;
  platform::LineTimeouts timeouts_{};
  std::string input_;
};

/// A network with the register at every address. Each socket is a peer.
class LoopbackSockets : public platform::DatagramSockets {
 public:
  LoopbackSockets(Device& device, Faults& faults, platform::Clock& clock,
                  Line::Acknowledges acknowledges = Line::Acknowledges::kFrame);
  LoopbackSockets(Replay& replay, platform::Clock& clock);

  platform::Granted startUp() override { return true; }
  platform::Attempt<std::int32_t> create() override;
  platform::Granted bind(std::int32_t handle, std::uint16_t port) override;
  platform::Granted connect(std::int32_t handle, const std::string& address, std::uint16_t port) override;
  platform::Granted send(std::int32_t handle, std::string_view bytes) override;
  platform::Attempt<std::string> receive(std::int32_t handle, std::size_t most) override;
  bool waitReadable(std::int32_t handle, std::int16_t seconds) override;
  void shutDown(std::int32_t handle) override;

 private:
  platform::Clock& clock_;
  Mailbox mailbox_;
  std::unique_ptr<Receiver> end_;
  /// One socket at a time; 0 if there is none.
  std::int32_t handle_ = 0;
  std::int32_t lastHandle_ = 0;
  bool isConnected_ = false;
};

}  // namespace mirvane::emulator
