#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <set>

#include "protocol/wire.h"
#include "tests/fakes/fake_machine.h"
#include "text/code_page.h"

namespace mirvane::test {

/// Bytes, or one datagram, that arrive so many seconds after what came before them.
struct Chunk {
  std::string bytes;
  double after = 0;
};

inline std::string checksum(const std::string& command) {
  unsigned sum = 0;
  for (const char c : command) sum = (sum + static_cast<unsigned char>(c)) % 256;
  return std::to_string(100 + sum % 100).substr(1);
}
inline std::string framed(const std::string& text) { return wire::kStx + text + wire::kEtx; }

/// The far end of a line: keeps the commands that it is sent and answers each with the next reply of the script, and
/// with a contented one when the script is at its end.
class FakeDevice {
 public:
  FakeDevice& answer(const std::string& reply, double after = 0) { return raw({{framed(reply), after}}); }
  FakeDevice& silence(int times = 1) { return times == 0 ? *this : raw({}).silence(times - 1); }
  FakeDevice& raw(std::vector<Chunk> chunks) {
    script.push_back(std::move(chunks));
    return *this;
  }

  std::vector<Chunk> take(const std::string& frame) {
    const std::string command = frame.substr(1, frame.size() - 4);
    EXPECT_EQ(frame.substr(frame.size() - 3, 2), checksum(command)) << command;
    commands.push_back(toUtf8(fromCodePage(command)));
    if (during) during();
    if (script.empty()) return {{framed("00/00/00/")}};
    auto chunks = script.front();
    script.pop_front();
    return chunks;
  }

  std::vector<std::string> commands;  ///< UTF-8
  std::deque<std::vector<Chunk>> script;
  std::function<void()> during;
};

class Inbox {
 public:
  explicit Inbox(FakeClock& clock) : clock_(clock) {}

  void add(const std::vector<Chunk>& chunks) {
    double due = clock_.now;
    for (const Chunk& chunk : chunks) arriving.push_back({chunk.bytes, due += chunk.after});
  }
  bool isDue() const { return !arriving.empty() && arriving.front().after <= clock_.now; }
  /// Lets time pass until something is there, but no longer than `seconds`.
  bool wait(double seconds) {
    if (!isDue()) clock_.advance(arriving.empty() ? seconds : std::min(seconds, arriving.front().after - clock_.now));
    return isDue();
  }
  std::string take() {
    std::string bytes = std::move(arriving.front().bytes);
    arriving.pop_front();
    return bytes;
  }

  std::deque<Chunk> arriving;  ///< `after` is the moment of arrival

 private:
  FakeClock& clock_;
};

struct Sent {
  std::string bytes;
  double at;
};

class FakeSerial : public platform::SerialPort {
 public:
  FakeSerial(FakeDevice& device, FakeClock& clock) : inbox(clock), device_(device), clock_(clock) {}

  platform::Attempt<std::int32_t> open(TextView name) override {
    opened.push_back(toUtf8(name));
    if (!ports.contains(toUtf8(name)) || isUnplugged()) return std::nullopt;
    inbox.arriving.clear();
    openedAt_ = clock_.now;
    return ++handle_;
  }
  bool setTimeouts(std::int32_t handle, const platform::LineTimeouts& value) override {
    return timeouts = value, takesTimeouts && handle > 0;
  }
  platform::Granted configure(std::int32_t handle, std::string_view value) override {
    return settings = value, takesSettings && handle > 0;
  }
  platform::Attempt<std::size_t> write(std::int32_t handle, std::string_view bytes) override {
    if (!isUp(handle)) return std::nullopt;
    if (bytes.front() == wire::kAck && failingAcks > 0) return --failingAcks, std::nullopt;
    if (std::exchange(takesNothing, takesNothing - (takesNothing > 0)) > 0) return 0;
    sent.push_back({std::string(bytes), clock_.now});
    for (const char byte : bytes) {
      if (byte == wire::kStx) frame_.clear();
      frame_ += byte;
      if (byte == wire::kAck) inbox.add({{afterAck}});
      if (byte == wire::kEtx) inbox.add(device_.take(frame_));
    }
    return bytes.size();
  }
  platform::Attempt<std::string> read(std::int32_t handle, std::size_t most) override {
    if (!isUp(handle)) return std::nullopt;
    EXPECT_LE(most, std::clamp<std::size_t>(*waiting(handle), 1, 64)) << "a read of more than is there blocks";
    const double longest = 0.001 * (timeouts.readConstant + timeouts.readMultiplier * static_cast<double>(most));
    if (waiting(handle) == std::size_t{0}) inbox.wait(longest);
    most = std::min(most, waiting(handle).value_or(0));
    position_ += most;
    return buffer_.substr(position_ - most, most);
  }
  platform::Attempt<std::size_t> waiting(std::int32_t handle) override {
    if (!isUp(handle)) return std::nullopt;
    while (inbox.isDue()) buffer_ += inbox.take();
    return buffer_.size() - position_;
  }
  bool close(std::int32_t handle) override { return closed.push_back(handle), handle > 0; }

  std::vector<double> attempts() const {
    std::vector<double> times;
    for (const Sent& piece : sent) {
      if (piece.bytes.back() == wire::kEnq) times.push_back(piece.at);
    }
    return times;
  }

  std::set<std::string> ports{"COM1"};
  bool takesTimeouts = true, takesSettings = true;
  std::vector<std::string> opened;
  platform::LineTimeouts timeouts{};
  std::string settings;
  std::vector<Sent> sent;
  std::vector<std::int32_t> closed;
  std::string afterAck;
  Inbox inbox;
  /// The next writes of an ACK fail; the next writes time out.
  int failingAcks = 0, takesNothing = 0;
  /// From the first moment to the second there is no line; what was open by then stays dead.
  double unpluggedFrom = 1e9, unpluggedUntil = 1e9;

 private:
  bool isUnplugged() const { return clock_.now >= unpluggedFrom && clock_.now < unpluggedUntil; }
  bool isUp(std::int32_t handle) const {
    return handle == handle_ && !isUnplugged() && (openedAt_ >= unpluggedUntil || clock_.now < unpluggedFrom);
  }

  std::int32_t handle_ = 39;
  double openedAt_ = 0;
  FakeDevice& device_;
  FakeClock& clock_;
  std::string frame_, buffer_;
  std::size_t position_ = 0;
};

class FakeSockets : public platform::DatagramSockets {
 public:
  FakeSockets(FakeDevice& device, FakeClock& clock) : inbox(clock), device_(device) {}

  platform::Granted startUp() override { return failing != "startUp"; }
  platform::Attempt<std::int32_t> create() override {
    if (!step("create")) return std::nullopt;
    return 50;
  }
  platform::Granted bind(std::int32_t /*handle*/, std::uint16_t port) override {
    return step("bind", " " + std::to_string(port));
  }
  platform::Granted connect(std::int32_t /*handle*/, const std::string& address, std::uint16_t port) override {
    return step("connect", " " + address + ":" + std::to_string(port));
  }
  platform::Granted send(std::int32_t /*handle*/, std::string_view bytes) override {
    if (bytes.starts_with(wire::kAck) && failingAcks > 0) return --failingAcks, false;
    sent.emplace_back(bytes);
    if (bytes.starts_with(wire::kEnq)) inbox.add(std::exchange(afterEnq, {}));
    if (bytes.empty() || bytes.front() != wire::kStx) return failing != "send";
    auto chunks = device_.take(std::string(bytes));
    if (!chunks.empty() && chunks.front().bytes.starts_with(wire::kStx)) chunks.insert(chunks.begin(), {{wire::kAck}});
    inbox.add(chunks);
    return failing != "send";
  }
  platform::Attempt<std::string> receive(std::int32_t /*handle*/, std::size_t most) override {
    std::string datagram = inbox.take();
    return failing == "receive" || datagram.size() > most ? std::nullopt : platform::Attempt<std::string>(datagram);
  }
  bool waitReadable(std::int32_t /*handle*/, std::int16_t seconds) override {
    waits.push_back(seconds);
    // A poll takes a moment too, or polling would stop the time.
    return inbox.isDue() || inbox.wait(seconds > 0 ? seconds : 0.0005);
  }
  void shutDown(std::int32_t handle) override { calls.push_back("shutDown " + std::to_string(handle)); }

  std::string failing;
  int failingAcks = 0;
  std::vector<std::string> calls, sent;
  std::vector<Chunk> afterEnq;
  std::vector<std::int16_t> waits;
  Inbox inbox;

 private:
  bool step(const std::string& name, const std::string& detail = "") {
    calls.push_back(name + detail);
    return failing != name;
  }

  FakeDevice& device_;
};

}  // namespace mirvane::test
