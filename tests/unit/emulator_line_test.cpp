#include "emulator/loopback.h"
#include "tests/fakes/fault_cases.h"
#include "text/code_page.h"

namespace mirvane::emulator {
namespace {

using test::frame;
using test::framed;
using test::kAck;
using test::kEnq;
using test::kNak;
using test::kSale;
using test::LineKind;

const std::string kStart{wire::kCan, wire::kCan, wire::kEnq};

/// A line in process, and the register at its end.
class LoopbackWire : public test::Wire {
 public:
  explicit LoopbackWire(LineKind line) : isSerial_(line == LineKind::kSerial) {
    if (line == LineKind::kNetworkEnq) sockets_ = &eager_;
    reconnect();
  }

  void send(const std::string& bytes) override {
    isSerial_ ? port_.write(handle_, bytes) > 0 : sockets_->send(handle_, bytes);
  }
  std::string receive(std::size_t size) override {
    if (!isSerial_) return sockets_->waitReadable(handle_, 2) ? *sockets_->receive(handle_, 10'000) : "";
    std::string bytes;
    for (const double end = now() + 2; bytes.size() < size && now() < end;) {
      const auto piece = port_.read(handle_, 1);
      if (!piece) clock_.advance(0.01);
      bytes += piece.value_or(std::string());
    }
    return bytes;
  }
  void reconnect() override {
    if (!isSerial_) {
      sockets_->connect(handle_ = sockets_->create().value_or(-1), "127.0.0.1", 9100);
      return;
    }
    port_.close(handle_);
    handle_ = port_.open(u"COM1").value_or(-1);
    port_.setTimeouts(handle_, {20, 1, 1, 1, 10});
    port_.configure(handle_, "115200,n,8,1");
  }
  double now() override { return clock_.now; }

  Faults faults;

 private:
  const bool isSerial_;
  test::FakeClock clock_;
  Device device_{{}, systemTime, [this] { return clock_.now; }};
  LoopbackPort port_{device_, faults, clock_};
  LoopbackSockets frame_{device_, faults, clock_};
  LoopbackSockets eager_{device_, faults, clock_, Line::Acknowledges::kEnq};
  LoopbackSockets* sockets_ = &frame_;
  std::int32_t handle_ = 0;
};

/// A register on the network, with a list of what is sent to whom and of what a witness is told.
class Log : public Outlet, public Witness {
 public:
  Log() { line.setWitness(this); }

  void turnTo(const std::string& peer) override { peer_ = peer; }
  void send(std::string_view bytes, std::uint32_t) override {
    if (bytes.size() > 1) told += "->" + peer_ + " ";
  }
  void sendCopy(std::string_view bytes, std::uint32_t delay) override { send(bytes, delay); }
  void drop() override {}
  bool hurry() override { return false; }
  void unplug(std::uint32_t, std::uint32_t) override {}
  void answered(const Exchange& exchange) override {
    const Fault& fault = exchange.fault;
    if (fault.at == Fault::At::kAnswer) return;
    told.append(exchange.peer).append(" ").append(sentName(fault.at)).append(" ").append(fault.name);
    told.append(" ").append(exchange.command.substr(0, 3)).append(", ");
  }
  void acknowledged() override {}

  Cents sold() { return device.fiscal().receipt ? device.fiscal().receipt->total() : 0; }

  double now = 0;
  Device device{{}, systemTime, [this] { return now; }};
  Faults faults;
  Line line{device, faults, *this, Line::Acknowledges::kFrame, [this] { return now; }};
  std::string told;

 private:
  std::string peer_;
};

class EmulatorLine : public testing::Test {
 protected:
  EmulatorLine() {
    handle = port.open(u"COM1").value_or(-1);
    port.setTimeouts(handle, {20, 1, 1, 1, 10});
    port.configure(handle, "115200,n,8,1");
    sockets.connect(socket = sockets.create().value_or(-1), "127.0.0.1", 9100);
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
    EXPECT_FALSE(port.open(u"COM1"));
    clock.advance(0.5);
    handle = port.open(u"COM1").value_or(-1);
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

TEST(Faults, StrikeAsTold) {
  for (const LineKind line : {LineKind::kSerial, LineKind::kNetworkFrame, LineKind::kNetworkEnq}) {
    for (const test::FaultCase& row : test::faultCases()) {
      if (std::count(row.lines.begin(), row.lines.end(), line) == 0) continue;
      SCOPED_TRACE(row.fault + " on line " + std::to_string(static_cast<int>(line)));
      LoopbackWire wire(line);
      wire.faults.add(row.rule());
      test::FaultDialogue(wire, line).run(row);
      EXPECT_TRUE(wire.faults.rules().empty());
    }
  }
  for (const std::string& name : faultNames()) {
    const auto isOf = [&name](const test::FaultCase& row) { return (row.fault + " ").starts_with(name + " "); };
    const auto cases = test::faultCases();
    EXPECT_TRUE(std::any_of(cases.begin(), cases.end(), isOf)) << name;
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
  socket = eager.create().value_or(-1);
  eager.connect(socket, "127.0.0.1", 9100);
  for (const auto& [wait, isEager, bytes, expected] : steps) {
    clock.sleep(wait);
    EXPECT_EQ(onNetwork(bytes, isEager ? eager : sockets), expected) << bytes;
  }
}

TEST_F(EmulatorLine, OnANetworkWhatIsDelayedIsOvertaken) {
  const std::string sold = framed("00/00/06/"), ok = framed("00/00/00/"), okLater = framed("00/00/06/");
  using Datagrams = std::vector<std::string>;
  const std::string ask = frame("?/"), cancel = kAck + frame("O/2/") + kAck;
  // A rule, and what is there after the sale, after a question behind it, and 300 ms later.
  const std::tuple<const char*, Datagrams, Datagrams, Datagrams> onNetworkRows[] = {
      {"next till-frame delayed 300", {}, {kAck, ok}, {kAck, sold}},
      {"next delayed 300", {kAck}, {kAck, okLater}, {sold}},
      {"next late 300", {kAck}, {kAck, okLater}, {}},  // the register itself gives it up at the ENQ
  };
  for (const auto& [rule, first, second, third] : onNetworkRows) {
    faults.add(rule);
    EXPECT_EQ(onNetwork(frame(kSale)), first) << rule;
    onNetwork(kEnq);
    EXPECT_EQ(onNetwork(ask), second) << rule;
    clock.advance(0.3);
    EXPECT_EQ(onNetwork(""), third) << rule;
    onNetwork(cancel);
  }
  for (const char* rule : {"next till-frame delayed 300", "next delayed 300"}) {
    faults.add(rule);
    port.write(handle, frame(kSale) + ask);
    clock.advance(0.29);
    EXPECT_EQ(port.waiting(handle), 0U) << rule;
    clock.advance(0.01);
    EXPECT_EQ(onSerial(""), sold + okLater) << rule;
    onSerial(cancel);
  }
}

TEST_F(EmulatorLine, ACopyThatArrivesBehindTheAckIsANewCommand) {
  faults.add("next always till-frame duplicate 40");
  onNetwork(frame(kSale));
  onNetwork(kAck);
  EXPECT_EQ(sold(), 200);
  clock.advance(0.05);
  onNetwork("");
  EXPECT_EQ(sold(), 400);
  // On a serial line the ACK cannot be overtaken.
  onSerial(frame(kSale) + kAck);
  clock.advance(0.05);
  onSerial("");
  EXPECT_EQ(sold(), 600);
}

TEST_F(EmulatorLine, WhatIsOnItsWayIsLostWithTheLine) {
  for (const char* fault : {"delayed 500", "duplicate 500"}) {
    faults.addScript(std::string("next till-frame ").append(fault).append("\nnext unplug 0"));
    onNetwork(frame(kSale));
    onNetwork(frame("?/"));
    clock.advance(1);
    onNetwork(kAck);
    EXPECT_EQ(sold(), 0) << fault;
  }
}

TEST_F(EmulatorLine, ASocketThatIsGoneGetsNoAnswer) {
  faults.add("next till-frame delayed 100");
  onNetwork(frame(kSale));
  sockets.connect(socket = sockets.create().value_or(-1), "127.0.0.1", 9100);
  EXPECT_FALSE(sockets.waitReadable(socket, 1));
  EXPECT_EQ(sold(), 200);
}

TEST(Faults, StrikeWhatBelongsToTheirCommand) {
  // The till asks, sells, asks, sells and asks, each time with an ENQ before and an ACK behind.
  const std::pair<const char*, const char*> rules[] = {
      {"on 3/S till-ack lost", "A till-ack lost 3/S, "},
      {"after 1 on 3/S till-ack duplicate", "A till-ack duplicate 3/S, "},
      {"on ?/ always till-ack noise", "A till-ack noise ?/, A till-ack noise ?/, A till-ack noise ?/, "},
      {"after 1 2 till-ack half", "A till-ack half 3/S, A till-ack half ?/, "},
      {"after 4 till-ack cut 0", "A till-ack cut ?/, "},
      {"after 2 till-enq lost", "A till-enq lost , "},
      {"next 2 till-enq delayed 5", "A till-enq delayed , A till-enq delayed , "},
      {"after 1 on 3/ till-frame half", "A till-frame half 3/S, "},
      {"after 2 on 3/ till-frame half", ""},
  };
  for (const auto& [rule, expected] : rules) {
    Log log;
    log.faults.add(rule);
    for (const std::string& command : {std::string("?/"), kSale, std::string("?/"), kSale, std::string("?/")}) {
      for (const std::string& sent : {kEnq, frame(command), kAck}) log.line.feed(sent, "A");
    }
    while (log.told.find("->A ") != std::string::npos) log.told.erase(log.told.find("->A "), 4);
    EXPECT_EQ(log.told, expected) << rule;
  }
}

TEST(Faults, OfARateStrikeTheSameCommandsForTheSameSeed) {
  for (const std::string what : {"lost", "till-frame lost", "till-ack lost", "till-enq lost"}) {
    const auto struck = [&what](std::uint32_t seed, const char* rate) {
      Faults faults;
      faults.seed(seed);
      faults.add(std::string("next ").append(rate).append(" ").append(what));
      const Fault::At at = faults.rules().front().fault.at;
      std::vector<int> numbers;
      for (int i = 0; i < 10'000; ++i) {
        if (faults.take("?/", false, 0, at).kind != Fault::Kind::kNone) numbers.push_back(i);
      }
      return numbers;
    };
    EXPECT_EQ(struck(7, "5%"), struck(7, "5%"));
    EXPECT_NE(struck(7, "5%"), struck(8, "5%"));
    const std::tuple<const char*, std::size_t, std::size_t> rates[] = {
        {"0.1%", 1, 30}, {"1%", 60, 150}, {"5%", 400, 600}, {"100%", 10'000, 10'000}};
    for (const auto& [rate, least, most] : rates) {
      EXPECT_GE(struck(1, rate).size(), least) << rate;
      EXPECT_LE(struck(1, rate).size(), most) << rate;
    }
  }
  Faults faults;
  std::string seen[2];
  for (std::string& strikes : seen) {
    faults.clear();
    faults.add("next 50% lost");
    for (int i = 0; i < 40; ++i) strikes += faults.take("?/", false, 0).kind == Fault::Kind::kNone ? '.' : 'x';
  }
  EXPECT_EQ(seen[0], seen[1]) << "calm begins anew";
}

TEST(Faults, RefuseRulesThatSayNothing) {
  for (const char* rule : {"on 3/S till-enq lost", "next till-ack silence", "next till-frame late 5", "next till-enq",
                           "till-ack lost", "next till-frame delayed", "next 0% lost", "next 100.1% lost",
                           "next 0.0001% lost", "next 5%", "next % lost", "next till-ack till-enq lost"}) {
    EXPECT_THROW(Faults().add(rule), FaultError) << rule;
  }
}

TEST(EmulatorPeers, ShareOneMemoryAndGetTheirOwnAnswers) {
  struct Step {
    const char* peer;
    std::string bytes;
    const char* told;
    Cents sold;
  };
  const Step steps[] = {
      {"A", frame(kSale), "->A ", 200},
      {"B", frame(kSale), "->B ", 200},  // told done, and not booked
      {"B", kAck, "", 200},
      {"A", frame(kSale), "->A ", 400},
      {"A", kAck, "", 400},
      {"A", frame(kSale), "A till-frame delayed 3/S, ", 400},
      {"B", frame("?/"), "->B ", 400},
      {"B", "", "->A ", 600},  // half a second later
  };
  Log log;
  log.faults.add("after 3 till-frame delayed 300");
  for (const auto& [peer, bytes, told, sold] : steps) {
    log.now += bytes.empty() ? 0.5 : 0;
    log.line.feed(bytes, peer);
    EXPECT_EQ(std::exchange(log.told, ""), told);
    EXPECT_EQ(log.sold(), sold);
  }
}

TEST(Faults, AScriptMayBeOfGreekWindows) {
  Faults faults;
  faults.addScript(toCodePage(u"# βλάβη\nnext reply 00/Καφές/"));
  EXPECT_EQ(faults.rules().front().text, toUtf8(u"next reply 00/Καφές/"));
  EXPECT_EQ(faults.take("?/", false, 0).bytes, toCodePage(u"00/Καφές/"));
}

TEST(Faults, ThoseWhoseTimeIsOverLeave) {
  Faults faults;
  faults.add("next 5s lost");
  faults.add("next always nak");
  EXPECT_FALSE(faults.forgetEnded(100)) << "it has not begun";
  EXPECT_EQ(faults.take("?/", false, 100).kind, Fault::Kind::kLost);
  EXPECT_FALSE(faults.forgetEnded(104.9));
  EXPECT_TRUE(faults.forgetEnded(105));
  EXPECT_EQ(faults.rules().size(), 1U);
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
