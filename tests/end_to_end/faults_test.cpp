#include <arpa/inet.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <chrono>

#include "tests/end_to_end/emulator_process.h"
#include "tests/fakes/fault_cases.h"

// Every fault over a pseudo-terminal and a socket, with nothing of the driver at the other end.
namespace mirvane::test {
namespace {

/// A pseudo-terminal by its link, or a socket of its own to "127.0.0.1:9100".
class RealWire : public Wire {
 public:
  explicit RealWire(std::string name) : name_(std::move(name)) { open(); }
  ~RealWire() override { close(file_); }

  void send(const std::string& bytes) override {
    EXPECT_EQ(write(file_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }
  std::string receive(std::size_t size) override {
    std::string bytes;
    while (bytes.size() < (isSerial() ? size : 1) && waits(POLLIN, 10'000)) {
      char piece[65'536];
      const ssize_t count = read(file_, piece, isSerial() ? size - bytes.size() : sizeof piece);
      if (count <= 0) break;
      bytes.append(piece, static_cast<std::size_t>(count));
    }
    return bytes;
  }
  void reconnect() override {
    if (isSerial()) {
      EXPECT_TRUE(waits(POLLHUP, 10'000));
      return open();
    }
    // Datagrams to a port that is closed are lost.
    do {
      open();
      send(frame("?/"));
    } while (!waits(POLLIN, 50));
    open();
  }
  double now() override {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
  }

 private:
  bool isSerial() const { return name_.starts_with('/'); }
  bool waits(short what, int milliseconds) const {
    pollfd state{file_, what, 0};
    return poll(&state, 1, milliseconds) > 0 && (state.revents & what) != 0;
  }
  void open() {
    if (file_ >= 0) close(file_);
    if (isSerial()) {
      for (int i = 0; i < 1000 && (file_ = ::open(name_.c_str(), O_RDWR | O_NOCTTY)) < 0; ++i) usleep(10'000);
    } else {
      const std::size_t colon = name_.find(':');
      sockaddr_in address{};
      address.sin_family = AF_INET;
      address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(name_.substr(colon + 1))));
      inet_pton(AF_INET, name_.substr(0, colon).c_str(), &address.sin_addr);
      file_ = socket(AF_INET, SOCK_DGRAM, 0);
      EXPECT_EQ(connect(file_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    }
    ASSERT_GE(file_, 0) << name_;
  }

  const std::string name_;
  int file_ = -1;
};

void strikeAll(bool isSerial) {
  const std::string link = testing::TempDir() + "mirvane-line-" + std::to_string(getpid());
  for (const FaultCase& row : faultCases()) {
    const bool needsEnq = row.fault.starts_with("till-enq");
    const LineKind line = isSerial ? LineKind::kSerial : needsEnq ? LineKind::kNetworkEnq : LineKind::kNetworkFrame;
    if (std::count(row.lines.begin(), row.lines.end(), line) == 0) continue;
    SCOPED_TRACE(row.fault);
    std::vector<std::string> options = {"--fault", row.rule(), "--acknowledge", needsEnq ? "enq" : "frame"};
    options.insert(options.end(), {isSerial ? "--pty" : "--udp", isSerial ? link : "0"});
    const EmulatorProcess emulator(options);
    RealWire wire(isSerial ? link : emulator.port());
    FaultDialogue(wire, line).run(row);
  }
}

TEST(FaultsOverARealLine, Pty) { strikeAll(true); }

TEST(FaultsOverARealLine, Udp) { strikeAll(false); }

TEST(FaultsOverARealLine, EachPeerGetsWhatItAskedFor) {
  const std::string done = framed("00/00/06/");
  const std::pair<const char*, std::vector<std::string>> cases[] = {
      {"late 60", {kAck, done}},
      {"delayed 60", {kAck, done}},
      {"duplicate 60", {kAck, done, done}},
      {"split 60", {kAck, done.substr(0, 5), done.substr(5)}},
      {"till-frame delayed 60", {kAck, done}},
  };
  for (const auto& [fault, answers] : cases) {
    const EmulatorProcess emulator({"--udp", "0", "--fault", std::string("on 3/S ") + fault});
    RealWire ours(emulator.port()), theirs(emulator.port());
    ours.send(frame(kSale));
    theirs.send(kEnq);
    theirs.send(frame("v/"));
    EXPECT_EQ(theirs.receive(1), kAck) << fault;
    EXPECT_NE(theirs.receive(1).find("/MIRVANE EMULATOR/"), std::string::npos) << fault;
    for (const std::string& answer : answers) EXPECT_EQ(ours.receive(1), answer) << fault;
  }
}

TEST(FaultsOverARealLine, ASeedRepeatsARun) {
  std::string runs[3];
  const char* seeds[] = {"5", "5", "6"};
  for (int i = 0; i < 3; ++i) {
    const EmulatorProcess emulator({"--udp", "0", "--seed", seeds[i], "--fault", "next 50% nak"});
    RealWire wire(emulator.port());
    for (int command = 0; command < 32; ++command) {
      wire.send(frame("?/"));
      const bool isStruck = wire.receive(1) == kNak;
      runs[i] += isStruck ? 'x' : '.';
      if (!isStruck) wire.receive(1);
    }
  }
  EXPECT_EQ(runs[0], runs[1]);
  EXPECT_NE(runs[0], runs[2]);
}

}  // namespace
}  // namespace mirvane::test
