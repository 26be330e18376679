#include <gtest/gtest.h>

#include "driver/wire.h"
#include "emulator/loopback.h"

namespace mirvane::emulator {
namespace {

class ManualClock : public platform::Clock {
 public:
  double secondsSinceMidnight() override { return now_; }
  double elapsed() override { return now_; }
  platform::LocalTime localTime() override { return {}; }
  void sleep(std::uint32_t milliseconds) override { now_ += milliseconds / 1000.0; }

 private:
  double now_ = 1;
};

std::string frame(const std::string& command) {
  unsigned sum = 0;
  for (const char c : command) sum = (sum + static_cast<unsigned char>(c)) & 0xFF;
  const std::string digits = std::to_string(100 + sum % 100).substr(1);
  return wire::kStx + command + digits + wire::kEtx;
}

std::string reply(const std::string& text) { return wire::kStx + text + wire::kEtx; }

const std::string kSale = "3/S//A///1.000/2.00/1/24.00/1/";
const std::string kStart{wire::kCan, wire::kCan, wire::kEnq};
const std::string kAck{wire::kAck};
const std::string kNak{wire::kNak};

class EmulatorLine : public testing::Test {
 protected:
  EmulatorLine() {
    handle = port.open(u"COM1");
    port.setTimeouts(handle, {20, 1, 1, 1, 10});
    port.configure(handle, "115200,n,8,1");
    sockets.connect(socket = sockets.create(), "127.0.0.1", 9100);
  }

  std::string onSerial(const std::string& bytes) {
    port.write(handle, bytes);
    return port.read(handle, 1 << 22);
  }
  /// The datagrams that are there after sending `bytes`.
  std::vector<std::string> onNetwork(const std::string& bytes) {
    sockets.send(socket, bytes);
    std::vector<std::string> datagrams;
    while (auto datagram = sockets.receive(socket, 10000)) datagrams.push_back(*datagram);
    return datagrams;
  }
  Cents sold() { return device.fiscal().receipt ? device.fiscal().receipt->total() : 0; }

  ManualClock clock;
  Device device;
  Faults faults;
  LoopbackPort port{device, faults, clock};
  LoopbackSockets sockets{device, faults, clock};
  std::int32_t handle = 0, socket = 0;
};

TEST_F(EmulatorLine, NothingIsBookedTwice) {
  faults.add("on 3/S lost");
  const std::string good = reply("00/00/06/");
  const std::string spoiled = wire::kStx + kSale + "99" + wire::kEtx;
  struct Step {
    std::string bytes, answer;
    Cents sold;
  };
  const Step steps[] = {
      {kStart + frame(kSale), "", 200},           // executed, the reply is lost
      {kStart + frame(kSale), good, 200},         // the same again: only the reply
      {kStart + spoiled, kNak, 200},              // a spoiled frame between changes nothing
      {kStart + frame(kSale), good, 200},         // still not acknowledged
      {kAck + kStart + frame(kSale), good, 400},  // acknowledged: a new sale
      {kStart + frame("?/"), good, 400},          // another command: the sale's reply is given up
      {kStart + frame(kSale), good, 600},
  };
  for (const Step& step : steps) {
    EXPECT_EQ(onSerial(step.bytes), step.answer);
    EXPECT_EQ(sold(), step.sold);
  }
}

TEST_F(EmulatorLine, OnlyAWholeAndSoundFrameIsExecuted) {
  const std::string whole = frame(kSale);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(onSerial(kStart + whole.substr(0, length)), "") << length;
  }
  onSerial(kStart);
  for (std::size_t i = 1; i + 1 < whole.size(); ++i) {
    std::string flipped = whole;
    flipped[i] = static_cast<char>(flipped[i] ^ 0x40);
    EXPECT_EQ(onSerial(kStart + flipped), kNak) << i;
    EXPECT_EQ(onNetwork(flipped), std::vector{kNak}) << i;
  }
  for (const std::string& empty : {std::string(), std::string("0"), std::string("x")}) {
    EXPECT_EQ(onSerial(reply(empty)), kNak);
  }
  EXPECT_EQ(sold(), 0);
  EXPECT_EQ(onSerial("noise" + kStart + "noise" + whole.substr(0, 9) + kStart + whole), reply("00/00/06/"));
  EXPECT_EQ(sold(), 200);
  EXPECT_EQ(onSerial(kAck + frame(std::string(Line::kLongestCommand + 1, 'x'))), reply("02/00/06/"));
  EXPECT_EQ(onSerial(kStart + frame(std::string(Line::kLongestCommand, 'x'))), reply("06/00/06/"));
}

TEST_F(EmulatorLine, FaultsStrikeAsTold) {
  const std::string version = "00/00/00/MIRVANE EMULATOR/2.0/1/";
  const std::string whole = reply(version);
  const std::string paperEnd = reply("00/04" + version.substr(5));
  struct Case {
    std::string fault, serial;
    std::vector<std::string> network;
  };
  const Case cases[] = {
      {"silence", "", {}},
      {"nak", kNak, {kNak}},
      {"lost", "", {}},
      {"ack-only", "", {kAck}},
      {"half", whole.substr(0, whole.size() / 2), {kAck, whole.substr(0, whole.size() / 2)}},
      {"short", reply("00"), {kAck, reply("00")}},
      {"noise 41FF", "A\xFF" + whole, {kAck, "A\xFF" + whole}},
      {"endless 2000",
       whole.substr(0, whole.size() - 1) + std::string(2000, 'x'),
       {kAck, whole.substr(0, whole.size() - 1), std::string(1024, 'x'), std::string(976, 'x')}},
      {"status 04", paperEnd, {kAck, paperEnd}},
      {"paper-end", paperEnd, {kAck, paperEnd}},
      {"busy", reply("0E/00/00/"), {kAck, reply("0E/00/00/")}},
      {"busy 146", reply("92/00/00/"), {kAck, reply("92/00/00/")}},
      {"code 116", reply("74/00/00/"), {kAck, reply("74/00/00/")}},
      {"reply Ω 00/", reply("\xD9 00/"), {kAck, reply("\xD9 00/")}},
  };
  for (const Case& c : cases) {
    faults.add("next " + c.fault);
    EXPECT_EQ(onSerial(kAck + kStart + frame("v/")), c.serial) << c.fault;
    EXPECT_EQ(onSerial(kAck + kStart + frame("v/")), whole) << "after " << c.fault;
    faults.add("next " + c.fault);
    EXPECT_EQ(onNetwork(kAck + frame("v/")), c.network) << c.fault;
    EXPECT_EQ(onNetwork(kAck + frame("v/")), (std::vector{kAck, whole})) << "after " << c.fault;
  }
}

TEST_F(EmulatorLine, ALateReplyComesInItsTimeUnlessTheTillBeginsAnew) {
  faults.add("next 2 late 900");
  EXPECT_EQ(onNetwork(frame("?/")), std::vector{kAck});
  EXPECT_TRUE(sockets.waitReadable(socket, 1));
  EXPECT_NEAR(clock.elapsed(), 1.9, 0.01);
  EXPECT_EQ(onNetwork(kAck), std::vector{reply("00/00/00/")});
  EXPECT_EQ(onNetwork(frame("?/")), std::vector{kAck});
  onNetwork({wire::kEnq});
  EXPECT_FALSE(sockets.waitReadable(socket, 5));
}

TEST_F(EmulatorLine, RulesCountAndLast) {
  faults.addScript("# a comment\n\n after 1 on t 2 code 1\r\nafter 8 always code 2\non ? 2s code 3");
  const auto code = [&](const std::string& command) { return onSerial(kAck + kStart + frame(command)).substr(1, 2); };
  std::string codes;
  for (const char* command : {"?/", "t/", "?/", "t/", "t/", "t/"}) codes += code(command) + " ";
  clock.sleep(2000);
  for (const char* command : {"?/", "a/", "a/", "a/"}) codes += code(command) + " ";
  EXPECT_EQ(codes, "03 00 03 01 01 00 00 00 02 02 ");
}

TEST(EmulatorFaults, ABadRuleIsRefusedWithItsLine) {
  const std::pair<const char*, const char*> cases[] = {
      {"next", "line 1: the fault is missing"},
      {"\n#\nnext papr-end", "line 3: unknown fault \"papr-end\""},
      {"paper-end", "line 1: a rule begins with \"next\", \"on\" or \"after\", not with \"paper-end\""},
      {"after x busy", "line 1: a number must follow \"after\", not \"x\""},
      {"next 0 nak", "line 1: a number of commands or of seconds (5s) is expected, not \"0\""},
      {"next 3m nak", "line 1: a number of commands or of seconds (5s) is expected, not \"3m\""},
      {"next late", "line 1: a number must follow \"late\", not \"nothing\""},
      {"next busy 15", "line 1: busy is code 14 or 146"},
      {"next noise 0F1", "line 1: bytes are written as pairs of hexadecimal digits, not as \"0F1\""},
      {"next status 4", "line 1: two hexadecimal digits must follow \"status\""},
      {"next nak now", "line 1: too much behind the fault: \"now\""},
  };
  for (const auto& [script, message] : cases) {
    Faults faults;
    try {
      faults.addScript(script);
      ADD_FAILURE() << script << " was taken";
    } catch (const FaultError& error) {
      EXPECT_STREQ(error.what(), message);
    }
  }
}

}  // namespace
}  // namespace mirvane::emulator
