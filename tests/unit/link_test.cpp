#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

const std::string kAck(1, wire::kAck), kNak(1, wire::kNak), kEnq(1, wire::kEnq), kCan(1, wire::kCan);

class Link : public DriverTest {
 protected:
  /// One exchange at the link's own level. Returns the reply.
  std::string transfer(Text command, Short timeOut = 0) {
    Result = 77;
    return toUtf8(driver->Send_(command, Result, Exresult, SupressError_, Pass, timeOut));
  }
  std::vector<std::string> sent() const {
    std::vector<std::string> bytes;
    for (const Sent& piece : serial.sent) bytes.push_back(piece.bytes);
    return bytes;
  }
};

TEST_F(Link, OneSerialExchangeByteByByte) {
  device.answer("00/00/00/x/");
  EXPECT_EQ(transfer(u"  F/3/ "), "00/00/00/x/");
  EXPECT_EQ(Result, 0);
  EXPECT_EQ(exresult(), "00/00/00/x/");
  EXPECT_THAT(sent(), ElementsAre(kCan, kCan, kEnq, framed("F/3/15"), kAck));
}

TEST_F(Link, ChecksumsHaveTwoDigits) {
  const std::pair<const char16_t*, const char*> cases[] = {{u"F/3/", "15"}, {u"ddd", "44"}, {u"@@@@", "00"},
                                                           {u"i", "05"},    {u"", "00"},    {u"ΑΑ", "30"}};
  for (const auto& [command, checksum] : cases) {
    serial.sent.clear();
    transfer(command);
    EXPECT_EQ(serial.sent[3].bytes, framed(toCodePage(command) + checksum)) << toUtf8(command);
  }
}

TEST_F(Link, LongFramesGoOutInPiecesOf255) {
  const std::pair<std::size_t, std::vector<std::size_t>> cases[] = {
      {251, {255}}, {252, {255, 1}}, {296, {255, 45}}, {508, {255, 255, 2}}, {1016, {255, 255, 255, 255}}};
  for (const auto& [length, pieces] : cases) {
    serial.sent.clear();
    transfer(Text(length, u'A'));
    std::vector<std::size_t> sizes;
    for (std::size_t i = 3; i + 1 < serial.sent.size(); ++i) sizes.push_back(serial.sent[i].bytes.size());
    EXPECT_EQ(sizes, pieces) << length;
    EXPECT_EQ(device.commands.back(), std::string(length, 'A'));
  }
}

TEST_F(Link, AReplyMayArriveInAnyPieces) {
  const std::string reply = framed("00/00/00/ab/\xC1/");
  for (std::size_t cut = 0; cut <= reply.size(); ++cut) {
    device.raw({{reply.substr(0, cut)}, {reply.substr(cut), 0.3}});
    EXPECT_EQ(transfer(u"v/"), "00/00/00/ab/Α/") << cut;
  }
  std::vector<Chunk> bytes;
  for (const char byte : reply) bytes.push_back({std::string(1, byte), 0.05});
  device.raw(bytes);
  EXPECT_EQ(transfer(u"v/"), "00/00/00/ab/Α/");
  device.answer("00/00/00/" + std::string(1000, 'x') + "/");
  EXPECT_EQ(transfer(u"v/"), "00/00/00/" + std::string(1000, 'x') + "/");
  EXPECT_EQ(serial.attempts().size(), reply.size() + 3);
}

TEST_F(Link, ControlBytesAreNoPartOfAReply) {
  device.raw(
      {{"\x15\x02"
        "00/\x06"
        "00/0\x15"
        "0/a\x02/\x03"
        "b/\x03"}});
  EXPECT_EQ(transfer(u"v/"), "00/00/00/a/b/");
}

TEST_F(Link, TheFirstTwoCharactersAreTheResult) {
  const std::pair<const char*, Short> cases[] = {
      {"00/00/00/", 0}, {"0A/00/00/", 10}, {"0a/00/00/", 10}, {"9E/00/00/", 158}, {"FF/00/00/", 255}, {"", 0},
      {"G1/00/00/", 0}, {"xx", 0},         {" A/00/00/", 10}, {"A6", 166},        {"/0A/00/", 0}};
  for (const auto& [reply, result] : cases) {
    device.answer(reply);
    transfer(u"v/");
    EXPECT_EQ(Result, result) << reply;
  }
}

TEST_F(Link, ASilentDeviceIsAskedAgainEveryTenSecondsWithoutEnd) {
  for (const auto& [timeOut, first] : {std::pair<Short, double>{0, 10}, {5, 10}, {30, 30}, {180, 180}}) {
    serial.sent.clear();
    const double start = clock.now;
    device.silence(40).answer("00/00/00/late/");
    EXPECT_EQ(transfer(u"F/3/", timeOut), "00/00/00/late/");
    EXPECT_EQ(Result, 0);
    const auto attempts = serial.attempts();
    ASSERT_EQ(attempts.size(), 41u) << timeOut;
    EXPECT_NEAR(attempts[1] - start, first, 0.7) << timeOut;
    for (std::size_t i = 2; i < attempts.size(); ++i) EXPECT_NEAR(attempts[i] - attempts[i - 1], 10, 0.1);
    EXPECT_EQ(serial.sent.size(), 41 * 4 + 1u) << "CAN, CAN, ENQ and frame each time, one ACK";
  }
  EXPECT_EQ(std::ranges::count(device.commands, "F/3/"), 4 * 41);
  EXPECT_THAT(screen.boxes, IsEmpty());
}

TEST_F(Link, MidnightDoesNotChangeTheDeadlines) {
  for (const double startOfDay : {86399.9, 86395.0, 86390.2, 86385.0}) {
    clock.startOfDay = startOfDay - clock.now;
    serial.sent.clear();
    const double start = clock.now;
    device.silence(3);
    transfer(u"F/3/", 15);
    const auto attempts = serial.attempts();
    ASSERT_EQ(attempts.size(), 4u);
    EXPECT_NEAR(attempts[1] - start, 15, 0.7) << startOfDay;
    EXPECT_NEAR(attempts[3] - attempts[1], 20, 0.2) << startOfDay;
  }
}

TEST_F(Link, APatientCommandIsSentOnce) {
  device.answer("00/00/00/", 170);
  transfer(u"5/2/", 180);
  EXPECT_EQ(serial.attempts().size(), 1u);
  EXPECT_EQ(Result, 0);
}

TEST_F(Link, StaleInputIsNotTakenForTheReply) {
  serial.inbox.add({{framed("19/00/00/old/") + std::string(200, 'o')}, {framed("19/00/00/")}});
  serial.afterAck = framed("19/00/00/echo/");
  for (const std::string reply : {"00/00/00/1/", "00/00/00/2/"}) {
    device.answer(reply);
    EXPECT_EQ(transfer(u"v/"), reply);
    EXPECT_EQ(serial.waiting(40), 0u);
  }
}

TEST_F(Link, WhatAnAttemptLeftInTheBufferStays) {
  device.raw(
      {{"\x02"
        "00/00"}});
  device.answer("/00/x/");
  EXPECT_EQ(transfer(u"v/"), "00/00/00/x/");
}

TEST_F(Link, AReplyWithoutEndTakesNoMoreThanAMebibyte) {
  constexpr std::size_t kMebibyte = 1 << 20;
  device.raw({{std::string(kMebibyte + 50000, 'x')}, {"tail" + std::string(1, wire::kEtx), 0.1}});
  const std::string reply = transfer(u"v/");
  EXPECT_LE(reply.size(), kMebibyte);
  EXPECT_GE(reply.size(), kMebibyte - 100);
  EXPECT_TRUE(reply.ends_with("xxtail"));
}

TEST_F(Link, WithoutAnOpenPortNothingIsSent) {
  for (const bool isNetwork : {false, true}) {
    for (const Long handle : {0, -1}) {
      moduleState().portHandle = handle;
      portProp().tcpPort = isNetwork;
      EXPECT_EQ(transfer(u"F/3/"), "");
      EXPECT_EQ(Result, -6);
      EXPECT_EQ(exresult(), "Κλειστή θύρα");
    }
  }
  EXPECT_THAT(serial.sent, IsEmpty());
  EXPECT_THAT(sockets.sent, IsEmpty());
}

TEST_F(Link, TraceLines) {
  run(*driver, "DisConnect_", u"");
  connect(u"COM1");
  moduleState().traceActive = true;
  device.answer("19/00/00/");
  transfer(u"F/3/");
  EXPECT_THAT(screen.trace, ElementsAre("34:56 ENQ", "34:56 send:     " + framed("F/3/15"), "34:56 reply     19/00/00/",
                                        "34:56 exres     Printer paper end detected"));
  moduleState().traceActive = false;
  screen.trace.clear();
  transfer(u"F/3/");
  connectNetwork();
  moduleState().traceActive = true;
  transfer(u"F/3/");
  EXPECT_THAT(screen.trace, IsEmpty()) << "switched off, and the network has none";
}

TEST_F(Link, OneNetworkExchangeDatagramByDatagram) {
  connectNetwork();
  device.answer("0A/00/00/x/");
  EXPECT_EQ(transfer(u"F/3/"), "0A/00/00/x/");
  EXPECT_EQ(Result, 10);
  EXPECT_THAT(sockets.sent, ElementsAre(kEnq, framed("F/3/15"), kAck));
  EXPECT_NEAR(clock.now, 0.05, 0.03);
  EXPECT_THAT(serial.sent, IsEmpty());
}

struct NetworkCase {
  const char* what;
  std::vector<Chunk> datagrams;
  const char* reply;
  bool isAcknowledged = true;
};

TEST_F(Link, WhatCountsAsANetworkReply) {
  connectNetwork();
  const std::string end = "/\x03";
  const NetworkCase cases[] = {
      {"at once", {{kAck}, {framed("00/00/00/a/")}}, "00/00/00/a/"},
      {"several datagrams",
       {{kAck},
        {"\x02"
         "00/00/"},
        {"00/a"},
        {"b" + end}},
       "00/00/00/ab/"},
      {"a datagram within the grace",
       {{kAck},
        {"\x02"
         "00/00/00/a"},
        {"b" + end, 0.015}},
       "00/00/00/ab/"},
      {"a datagram after the grace",
       {{kAck},
        {"\x02"
         "00/00/00/a"},
        {"b" + end, 0.03}},
       "00/00/00/a"},
      {"a long wait after the ACK", {{kAck}, {framed("00/00/00/a/"), 4.2}}, "00/00/00/a/"},
      {"the ACK late", {{kAck, 0.9}, {framed("00/00/00/a/"), 0.9}}, "00/00/00/a/"},
      {"a NAK before the reply", {{kAck}, {kNak, 0.1}, {framed("00/00/00/a/"), 0.7}}, "00/00/00/a/"},
      {"nothing after the ACK", {{kAck}}, ""},
      {"too late after the ACK", {{kAck}, {framed("00/00/00/a/"), 6}}, ""},
      {"the reply within the first datagram", {{kAck + framed("00/00/00/a/")}}, ""},
      {"garbage first", {{"\xFF\x00\x7F"}, {framed("00/00/00/a/")}}, "", false},
  };
  for (const NetworkCase& row : cases) {
    SCOPED_TRACE(row.what);
    clock.advance(10);
    sockets.inbox.arriving.clear();
    sockets.sent.clear();
    const double start = clock.now;
    device.raw(row.datagrams);
    EXPECT_EQ(transfer(u"F/3/"), row.reply);
    EXPECT_EQ(Result, 0);
    EXPECT_EQ(exresult(), row.reply);
    EXPECT_EQ(sockets.sent.size(), row.isAcknowledged ? 3u : 2u);
    EXPECT_LT(clock.now - start, 5.7);
    EXPECT_FALSE(sockets.inbox.isDue()) << "what is left over is drained";
    if (std::string("nothing after the ACK") == row.what) {
      EXPECT_GE(clock.now - start, 5.0);
    }
  }
}

TEST_F(Link, ASilentNetworkIsTriedFourTimes) {
  connectNetwork();
  device.silence(4);
  EXPECT_EQ(transfer(u"F/3/", 180), "");
  EXPECT_EQ(Result, -3);
  EXPECT_EQ(exresult(), "H ταμειακή δεν Απαντά!");
  EXPECT_EQ(device.commands.size(), 4u);
  EXPECT_EQ(sockets.sent.size(), 8u) << "ENQ and frame each time";
  EXPECT_NEAR(clock.now, 4.2, 0.3);
  device.silence(3).answer("00/00/00/4th/");
  EXPECT_EQ(transfer(u"F/3/"), "00/00/00/4th/");
  EXPECT_EQ(Result, 0);
}

TEST_F(Link, ANakOnTheNetworkIsNotRetried) {
  connectNetwork();
  device.raw({{kNak + "later"}, {"rest"}});
  EXPECT_EQ(transfer(u"F/3/"), "");
  EXPECT_EQ(Result, -207);
  EXPECT_EQ(exresult(), "Αναμονή Απόκρισης Ταμειακής...");
  EXPECT_THAT(sockets.sent, ElementsAre(kEnq, framed("F/3/15")));
  EXPECT_FALSE(sockets.inbox.isDue());
}

TEST_F(Link, RawAccessToTheLine) {
  Text raw = u"a\x05";
  EXPECT_TRUE(driver->SendData(raw));
  EXPECT_THAT(sent(), ElementsAre("a\x05"));
  serial.inbox.add({{"\xC1z"}});
  EXPECT_EQ(driver->recData(), u"Αz");
  EXPECT_FALSE(driver->availData()) << "never on a serial line";
  connectNetwork();
  sockets.inbox.add({{"one"}, {"two"}});
  EXPECT_TRUE(driver->availData());
  EXPECT_EQ(driver->recData(), u"one");
  driver->clearBuffer();
  EXPECT_FALSE(driver->availData());
  Value five = Short{5};
  driver->invoke("lastResult", ClassInfo::Access::write, std::array{Argument(five)});
  EXPECT_EQ(driver->call("lastResult"), five);
}

}  // namespace
}  // namespace mirvane::test
