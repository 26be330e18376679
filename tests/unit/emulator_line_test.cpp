#include "emulator/loopback.h"
#include "tests/fakes/fake_line.h"

namespace mirvane::emulator {
namespace {

using test::framed;

std::string frame(const std::string& command) { return framed(command + test::checksum(command)); }

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
    return port.read(handle, 1 << 22).value_or("gone");
  }
  /// The datagrams that are there after sending `bytes`.
  std::vector<std::string> onNetwork(const std::string& bytes) { return onNetwork(bytes, sockets); }
  std::vector<std::string> onNetwork(const std::string& bytes, LoopbackSockets& network) {
    network.send(socket, bytes);
    std::vector<std::string> datagrams;
    while (auto datagram = network.receive(socket, 10000)) datagrams.push_back(*datagram);
    return datagrams;
  }
  Cents sold() { return device.fiscal().receipt ? device.fiscal().receipt->total() : 0; }

  test::FakeClock clock;
  Device device{{}, systemTime, [this] { return clock.now; }};
  Faults faults;
  LoopbackPort port{device, faults, clock};
  LoopbackSockets sockets{device, faults, clock};
  std::int32_t handle = 0, socket = 0;
};

TEST_F(EmulatorLine, NothingIsBookedTwice) {
  faults.add("on 3/S lost");
  const std::string good = framed("00/00/06/");
  const std::tuple<std::string, std::string, Cents> steps[] = {
      {kStart + frame(kSale), "", 200},            // executed, the reply is lost
      {kStart + frame(kSale), good, 200},          // the same again: only the reply
      {kStart + framed(kSale + "99"), kNak, 200},  // a spoiled frame between changes nothing
      {kStart + frame(kSale), good, 200},          // still not acknowledged
      {kAck + kStart + frame(kSale), good, 400},   // acknowledged: a new sale
      {kStart + frame("?/"), good, 400},           // another command: the sale's reply is given up
      {kStart + frame(kSale), good, 600},
  };
  for (const auto& [bytes, answer, total] : steps) {
    EXPECT_EQ(onSerial(bytes), answer);
    EXPECT_EQ(sold(), total);
  }
}

TEST_F(EmulatorLine, AnUnpluggedLineComesBackAsItWas) {
  const std::string sale = kStart + frame(kSale), good = framed("00/00/06/");
  // What is booked when the line has vanished, and after the same command once more.
  const std::tuple<const char*, Cents, Cents> cases[] = {{"next unplug 3", 0, 200}, {"next unplug-after 3", 400, 400}};
  for (const auto& [fault, meanwhile, afterwards] : cases) {
    faults.add(fault);
    EXPECT_EQ(onSerial(sale + sale), "gone") << fault;
    EXPECT_EQ(sold(), meanwhile) << fault;
    const std::int32_t dead = handle;
    EXPECT_EQ(port.write(dead, sale), std::nullopt);
    EXPECT_TRUE(port.close(dead));
    clock.advance(2.5);
    EXPECT_EQ(port.open(u"COM1"), -1);
    clock.advance(0.5);
    handle = port.open(u"COM1");
    EXPECT_TRUE(port.configure(handle, "115200,n,8,1"));
    EXPECT_EQ(port.write(dead, sale), std::nullopt);
    EXPECT_EQ(onSerial(sale), good) << fault;
    EXPECT_EQ(sold(), afterwards) << fault;
    onSerial(kAck);
  }
  faults.add("next unplug 1");
  EXPECT_EQ(onNetwork(frame("?/")), std::vector<std::string>{});
  EXPECT_EQ(onNetwork(frame("?/")), std::vector<std::string>{});
  EXPECT_FALSE(sockets.waitReadable(socket, 2));
  EXPECT_EQ(onNetwork(frame("?/")), (std::vector{kAck, good}));
}

TEST_F(EmulatorLine, ARepeatedFrameIsNotASecondPayment) {
  const std::string card = "5/2///1.00/1/1/";
  faults.add("on ?/ lost");
  device.cards().options.next = {Code::kOk, Code::kCardFailed};
  onSerial(kStart + frame(kSale) + kAck);
  // Seconds that pass, a frame, whether its reply is acknowledged, the code in the reply, and what is paid then.
  const std::tuple<double, std::string, bool, std::string, Cents> steps[] = {
      {0, card, false, "9E", 0},  {5, card, false, "9E", 0},   {0, "?/", false, "", 100},  {0, "?/", true, "00", 100},
      {0, card, true, "9E", 100}, {9, "?/", false, "9C", 100}, {0, "?/", true, "9C", 100}, {0, "?/", true, "00", 100}};
  for (const auto& [seconds, command, isAcknowledged, code, sum] : steps) {
    clock.advance(seconds);
    const std::string reply = onSerial(frame(command));
    if (isAcknowledged) onSerial(kAck);
    EXPECT_EQ(reply.substr(reply.empty() ? 0 : 1, 2), code) << command;
    EXPECT_EQ(device.fiscal().receipt->paid(), sum) << command;
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
  EXPECT_EQ(onSerial(framed("0")), kNak);
  EXPECT_EQ(sold(), 0);
  EXPECT_EQ(onSerial("noise" + kStart + "noise" + whole.substr(0, 9) + kStart + whole), framed("00/00/06/"));
  EXPECT_EQ(sold(), 200);
  EXPECT_EQ(onSerial(kAck + frame(std::string(Line::kLongestCommand + 1, 'x'))), framed("02/00/06/"));
  EXPECT_EQ(onSerial(kStart + frame(std::string(Line::kLongestCommand, 'x'))), framed("06/00/06/"));
}

TEST_F(EmulatorLine, FaultsStrikeAsTold) {
  const std::string version = "00/00/00/MIRVANE EMULATOR/2.0/1/", whole = framed(version);
  const std::string cut = whole.substr(0, whole.size() - 1), half = whole.substr(0, whole.size() / 2);
  std::vector<std::tuple<std::string, std::string, std::vector<std::string>>> cases = {
      {"nak", kNak, {kNak}},
      {"lost", "", {}},
      {"ack-only", "", {kAck}},
      {"endless 2000", cut + std::string(2000, 'x'), {kAck, cut, std::string(1024, 'x'), std::string(976, 'x')}}};
  const std::pair<const char*, std::string> replies[] = {{"half", half},
                                                         {"cut 7", whole.substr(0, 7)},
                                                         {"cut 99", cut},
                                                         {"short", framed("00")},
                                                         {"noise 41FF", "A\xFF" + whole},
                                                         {"paper-end", framed("00/04" + version.substr(5))},
                                                         {"code 116", framed("74/00/00/")},
                                                         {"reply Ω 00/", framed("\xD9 00/")}};
  for (const auto& [fault, reply] : replies) cases.push_back({fault, reply, {kAck, reply}});
  for (const auto& [fault, onLine, datagrams] : cases) {
    faults.add("next " + fault);
    EXPECT_EQ(onSerial(kAck + kStart + frame("v/")), onLine) << fault;
    EXPECT_EQ(onSerial(kAck + kStart + frame("v/")), whole) << "after " << fault;
    faults.add("next " + fault);
    EXPECT_EQ(onNetwork(kAck + frame("v/")), datagrams) << fault;
    EXPECT_EQ(onNetwork(kAck + frame("v/")), (std::vector{kAck, whole})) << "after " << fault;
  }
}

TEST_F(EmulatorLine, ALateReplyComesInItsTimeUnlessTheTillBeginsAnew) {
  faults.add("next 2 late 900");
  EXPECT_EQ(onNetwork(frame("?/")), std::vector{kAck});
  EXPECT_TRUE(sockets.waitReadable(socket, 1));
  EXPECT_NEAR(clock.elapsed(), 0.9, 0.01);
  EXPECT_EQ(onNetwork(kAck), std::vector{framed("00/00/00/")});
  EXPECT_EQ(onNetwork(frame("?/")), std::vector{kAck});
  onNetwork({wire::kEnq});
  EXPECT_FALSE(sockets.waitReadable(socket, 5));
}

TEST_F(EmulatorLine, DatagramsComeAsTheNetworkCarriesThem) {
  const std::string ok = framed("00/00/00/"), enq{wire::kEnq};
  LoopbackSockets eager{device, faults, clock, Line::Acknowledges::kEnq};
  faults.addScript("next split 25\nnext duplicate 40\nafter 4 nak");
  // After so many milliseconds, to a register of either kind, what is sent and what is there then.
  const std::tuple<std::uint32_t, bool, std::string, std::vector<std::string>> steps[] = {
      {0, false, frame("?/"), {kAck, ok.substr(0, 5)}},
      {30, false, kAck, {ok.substr(5)}},
      {0, false, frame("?/"), {kAck, ok}},
      {10, false, kAck + enq, {}},
      {40, false, frame("t/x/"), {ok, kAck, framed("01/00/00/")}},  // the copy outlived the ENQ
      {0, true, enq, {kAck}},
      {50, true, frame("?/"), {ok}},
      {0, true, enq + frame("?/"), {kAck, kNak}},
  };
  socket = eager.create();
  eager.connect(socket, "127.0.0.1", 9100);
  for (const auto& [wait, isEager, bytes, expected] : steps) {
    clock.sleep(wait);
    EXPECT_EQ(onNetwork(bytes, isEager ? eager : sockets), expected) << bytes;
  }
}

TEST_F(EmulatorLine, RulesCountAndLast) {
  faults.addScript("# a comment\n\n after 1 on t 2 code 1\r\nafter 8 always code 2\non ? 2s code 3\non P/Ω code 4");
  const auto code = [&](const std::string& command) { return onSerial(kAck + kStart + frame(command)).substr(1, 2); };
  std::string codes;
  for (const char* command : {"?/", "t/", "?/", "t/", "t/", "t/", "P/\xD9/1/"}) codes += code(command) + " ";
  clock.sleep(2000);
  for (const char* command : {"?/", "a/", "a/", "a/"}) codes += code(command) + " ";
  EXPECT_EQ(codes, "03 00 03 01 01 00 04 00 02 02 02 ");
}

}  // namespace
}  // namespace mirvane::emulator
