#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "automation/object.h"
#include "platform/ports.h"
#include "protocol/reply.h"
#include "state/module_state.h"

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

/// Time that passes only when somebody waits.
class Clock : public platform::Clock {
 public:
  double secondsSinceMidnight() override { return now_ < 43200 ? 43200 + now_ : now_ - 43200; }
  double elapsed() override { return now_; }
  platform::LocalTime localTime() override { return {2026, 11, 22, 12, 0, 0}; }
  std::int64_t sinceEpoch() override { return static_cast<std::int64_t>(now_ * 1000); }
  int zoneAt(std::int64_t) override { return 0; }
  void sleep(std::uint32_t milliseconds) override { now_ += milliseconds / 1000.0; }

 private:
  double now_ = 0;
};

/// An operator who closes every box.
class Screen : public platform::Screen {
 public:
  explicit Screen(Clock& clock) : clock_(clock) {}

  void messageBox(TextView, std::uint32_t, TextView) override {}
  void waitWhile(const platform::WaitText&, const std::function<bool(platform::WaitView&)>& tick) override {
    struct View : platform::WaitView {
      void show(const platform::WaitText&) override {}
      void repaint() override {}
    } view;
    do clock_.sleep(1000);
    while (tick(view));
  }
  std::unique_ptr<platform::WaitView> showWait(const platform::WaitText&) override { return nullptr; }
  std::unique_ptr<platform::JournalView> showJournal() override;
  void serveWindows() override {}
  void showTrace(bool) override {}
  void traceLine(TextView) override {}

 private:
  Clock& clock_;
};

/// A disk on which only journals may be written, in folders below their own two.
class Files : public platform::Files {
 public:
  Text componentFolder() override { return u"C:\\till"; }
  std::optional<std::string> read(TextView path) override;
  bool makeFolder(TextView folder) override;
  bool replace(TextView path, std::string_view bytes) override;
  bool isFolder(TextView) override { return false; }
  std::vector<Text> fileNames(TextView) override { return {}; }
  std::optional<std::uint64_t> fileSize(TextView) override { return std::nullopt; }
  std::unique_ptr<platform::GrowingFile> grow(TextView) override { return nullptr; }
  void remove(TextView) override {}

  std::optional<std::string> catalogue;
  /// Everything that was ever written, the latest last.
  std::vector<std::string> written;
};

/// A serial line and a network at once. The device at the other end answers each frame with what `answer` says, the
/// bytes as they come; on the network "\r" ends a datagram, and nothing stands for it on the serial line.
class Line : public platform::SerialPort, public platform::DatagramSockets {
 public:
  using Answer = std::function<std::string(const std::string& command)>;

  explicit Line(Clock& clock) : clock_(clock) {}

  Answer answer = [](const std::string&) { return std::string(); };
  /// Whether the device acknowledges a frame on the network by itself.
  bool acknowledges = true;
  int frames = 0;

  std::int32_t open(TextView) override { return 1; }
  bool setTimeouts(std::int32_t, const platform::LineTimeouts&) override { return true; }
  bool configure(std::int32_t, std::string_view) override { return true; }
  std::optional<std::size_t> write(std::int32_t handle, std::string_view bytes) override;
  std::optional<std::string> read(std::int32_t handle, std::size_t most) override;
  std::optional<std::size_t> waiting(std::int32_t) override { return serial_.size(); }
  bool close(std::int32_t) override { return true; }

  bool startUp() override { return true; }
  std::int32_t create() override { return 2; }
  bool bind(std::int32_t, std::uint16_t) override { return true; }
  bool connect(std::int32_t, const std::string&, std::uint16_t) override { return true; }
  bool send(std::int32_t handle, std::string_view bytes) override;
  std::optional<std::string> receive(std::int32_t handle, std::size_t most) override;
  bool waitReadable(std::int32_t handle, std::int16_t seconds) override;
  void shutDown(std::int32_t) override {}

 private:
  /// The frames that end in `bytes`.
  template <class Take>
  void takeFrames(std::string_view bytes, Take take);

  Clock& clock_;
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

  Clock clock;
  Screen screen{clock};
  Files files;
  Line line{clock};
  platform::Platform platform{line, line, clock, screen, files};

 private:
  int liveBefore_;
};

/// A new object of a public class.
ObjectPtr create(std::string_view className);

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
