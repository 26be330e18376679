#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "automation/object.h"
#include "embedding/component.h"
#include "embedding/virtual_machine.h"
#include "protocol/reply.h"

// What the fuzz targets have in common: how an input is taken apart, and a machine of fakes for the component to run
// on.
namespace mirvane::fuzz {

/// Ends the program, as a crash that the fuzzer keeps the input of, when what must hold does not.
void require(bool holds, const char* what);

/// Runs `call`; false when it raised an automation error. Any other exception is a crash.
bool passes(const std::function<void()>& call);

/// An input, taken from the front. At its end there are zeros and empty texts.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}

  bool atEnd() const { return rest_.empty(); }
  std::uint8_t byte() { return static_cast<std::uint8_t>(take(1)[0]); }
  /// Eight bytes, the lowest first.
  std::uint64_t number();
  double real();
  /// Up to the next line end.
  std::string line();
  std::string rest() { return std::string(std::exchange(rest_, {})); }

 private:
  std::string take(std::size_t count);

  std::string_view rest_;
};

/// A disk on which only journals may be written, in folders below their own two.
class Disk : public embedding::VirtualDisk {
 public:
  bool makeFolder(TextView folder) override;
  bool replace(TextView path, std::string_view bytes) override;

  /// Everything that was ever written, the latest last.
  std::vector<std::string> written;
};

/// A serial line and a network at once. The device at the other end answers each frame with what `answer` says, the
/// bytes as they come; on the network "\r" ends a datagram, and nothing stands for it on the serial line.
class Line : public platform::SerialPort, public platform::DatagramSockets {
 public:
  using Answer = std::function<std::string(const std::string& command)>;

  explicit Line(embedding::VirtualClock& clock) : clock_(clock) {}

  Answer answer = [](const std::string&) { return std::string(); };
  /// Whether the device acknowledges a frame on the network by itself.
  bool acknowledges = true;
  int frames = 0;

  platform::Attempt<std::int32_t> open(TextView) override { return 1; }
  bool setTimeouts(std::int32_t, const platform::LineTimeouts&) override { return true; }
  platform::Granted configure(std::int32_t, std::string_view) override { return true; }
  platform::Attempt<std::size_t> write(std::int32_t handle, std::string_view bytes) override;
  platform::Attempt<std::string> read(std::int32_t handle, std::size_t most) override;
  platform::Attempt<std::size_t> waiting(std::int32_t) override { return serial_.size(); }
  bool close(std::int32_t) override { return true; }

  platform::Granted startUp() override { return true; }
  platform::Attempt<std::int32_t> create() override { return 2; }
  platform::Granted bind(std::int32_t, std::uint16_t) override { return true; }
  platform::Granted connect(std::int32_t, const std::string&, std::uint16_t) override { return true; }
  platform::Granted send(std::int32_t handle, std::string_view bytes) override;
  platform::Attempt<std::string> receive(std::int32_t handle, std::size_t most) override;
  bool waitReadable(std::int32_t handle, std::int16_t seconds) override;
  void shutDown(std::int32_t) override {}

 private:
  /// The frames that end in `bytes`.
  template <class Take>
  void takeFrames(std::string_view bytes, Take take);

  embedding::VirtualClock& clock_;
  std::string frame_;
  std::string serial_;
  std::vector<std::string> datagrams_;
};

/// The component, freshly started on a machine of fakes. At the end no object may be left.
class Machine {
 public:
  Machine();
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;
  ~Machine();

  /// Has the device answer with the lines of `replies`, one a frame, and contentedly, with what ends a wait and a
  /// journal, when they are at their end. `framed`: each is one reply without its frame; otherwise the bytes as they
  /// are. `told` sees what the device was sent and, unless it is null, the reply that the till reads.
  void script(Input replies, bool framed, std::function<void(const std::string&, const Reply*)> told);
  /// A facade connected to the device.
  ObjectPtr connected(bool overNetwork);

  embedding::VirtualClock clock;
  embedding::VirtualOperator screen{clock};
  Disk disk;
  Line line{clock};
  platform::Platform platform{line, line, clock, screen, disk};

 private:
  const int liveBefore_ = Object::liveCount();
  std::optional<embedding::Component> component_;
};

/// The variables of one call of a member, in its parameters' types. Texts are "A", numbers `number`, records new ones.
class Variables {
 public:
  Variables(const Member& member, std::int16_t number, bool suppressed);

  std::vector<Argument> references();
  Value& operator[](std::string_view parameter);
  /// What a reader of a device fills: all but Result, Exresult, SupressError_ and Pass, records by their properties.
  std::vector<Value> outputs() const;

 private:
  const Parameters& parameters_;
  std::vector<Value> values_;
};

}  // namespace mirvane::fuzz

/// What a target is: runs one input.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
