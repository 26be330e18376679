#include "tests/fakes/link_fixture.h"

namespace mirvane::test {
namespace {

TEST_F(Link, WhatCountsAsANetworkReply) {
  connectNetwork();
  const std::string head = kStx + "00/00/00/a", end = "b/" + kEtx, whole = framed("00/00/00/a/");
  struct Case {
    const char* what;
    std::vector<Chunk> datagrams;
    const char* reply;
    double least = 0;
    int sent = 3;
    Short result = 0;
  };
  const Case cases[] = {
      {"at once", {{kAck}, {framed("0A/00/00/")}}, "Cannot execute with day open", 0, 3, 10},
      {"several datagrams", {{kAck}, {kStx + "00/00/"}, {"00/a"}, {end}}, "00/00/00/ab/"},
      {"a datagram within the grace", {{kAck}, {head}, {end, 0.29}}, "00/00/00/ab/"},
      {"a datagram after the grace", {{kAck}, {head}, {end, 0.32}}, "00/00/00/a"},
      {"a second ACK", {{kAck}, {kAck, 0.1}, {whole, 0.4}}, "00/00/00/a/"},
      {"a long wait after the ACK", {{kAck}, {whole, 4.2}}, "00/00/00/a/", 4.2},
      {"the ACK late", {{kAck, 0.9}, {whole, 0.9}}, "00/00/00/a/", 1.8},
      {"a NAK before the reply", {{kAck}, {kNak, 0.1}, {whole, 0.7}}, "00/00/00/a/"},
      {"a NAK and no reply", {{kAck}, {kNak, 0.1}}, "Αναμονή Απόκρισης Ταμειακής...", 5, 2, -207},
      {"too late after the ACK", {{kAck}, {whole, 6}}, "", 5},
      {"the reply within the first datagram", {{kAck + whole}}, ""},
      {"a NAK first", {{kNak + "later"}, {"rest"}}, "Αναμονή Απόκρισης Ταμειακής...", 0, 2, -207},
      {"at the deadline", {{kAck}, {whole, 5}}, "00/00/00/a/", 5},
      {"garbage first", {{"\xFF\x01\x7F"}, {""}, {kAck, 0.5}, {whole, 0.1}}, "00/00/00/a/", 0.6},
      {"the reply before its ACK", {{""}, {framed("60/00/00/")}, {kAck, 0.2}}, "Price Error", 5, 3, 96},
      {"a part of one before the ACK", {{""}, {head}, {kAck, 0.2}}, "", 5},
      {"a later reply is the right one", {{""}, {framed("60/00/00/")}, {kAck, 0.2}, {whole, 1}}, "00/00/00/a/", 1},
  };
  for (const auto& [what, datagrams, reply, least, count, result] : cases) {
    SCOPED_TRACE(what);
    clock.advance(10);
    thePort().lastFrame.clear();
    sockets.inbox.arriving.clear();
    sockets.sent.clear();
    const double start = clock.now;
    device.raw(datagrams);
    EXPECT_EQ(transfer(u"F/3/"), result == 0 ? reply : result == 10 ? "0A/00/00/" : result == 96 ? "60/00/00/" : "");
    EXPECT_EQ(std::tuple(Result, exresult()), std::tuple(result, reply));
    const std::vector<std::string> expected = {kEnq, framed("F/3/15"), kAck};
    EXPECT_EQ(sockets.sent, std::vector(expected.begin(), expected.begin() + count)) << "an ACK only for an ACK";
    EXPECT_GE(clock.now - start, least);
    EXPECT_LT(clock.now - start, 5.7);
    EXPECT_FALSE(sockets.inbox.isDue()) << "what is left over is drained";
  }
}

TEST_F(Link, WhatIsThereBeforeTheFrameIsNotItsAnswer) {
  connectNetwork();
  const std::string late = framed("00/00/00/late/"), frame = framed("F/3/15");
  const std::tuple<const char*, std::vector<Chunk>, std::vector<Chunk>, const char*, std::vector<std::string>> cases[] =
      {{"a late answer", {{late}}, {{framed("00/00/00/")}}, "0 00/00/00/", {kEnq, frame, kAck}},
       {"its parts",
        {{kAck}, {late.substr(0, 5)}, {late.substr(5)}},
        {{framed("19/00/00/")}},
        "25 Printer paper end detected",
        {kEnq, frame, kAck}},
       {"the ENQ acknowledged",
        {{late, 0.02}, {kAck, 0.01}},
        {{"00/00/00/a/", 0.4}},
        "0 00/00/00/a/",
        {kEnq, frame, kAck}},
       {"the ENQ refused", {{kNak, 0.03}}, {}, "-207 Αναμονή Απόκρισης Ταμειακής...", {kEnq}}};
  for (const auto& [what, before, answer, told, sent] : cases) {
    SCOPED_TRACE(what);
    thePort().lastFrame.clear();
    sockets.sent.clear();
    sockets.afterEnq = before;
    device.raw(answer);
    transfer(u"F/3/");
    EXPECT_EQ(outcome(), told);
    EXPECT_EQ(sockets.sent, sent);
    device.script.clear();
  }
}

// The register takes a frame that equals the last one for a repetition until an acknowledgement has arrived.
TEST_F(Link, ASecondEqualFrameIsNoRepetition) {
  const std::string sale = "3/S/";
  for (const bool isNetwork : {false, true}) {
    if (isNetwork) connectNetwork();
    const auto commands = [&](const std::vector<Text>& all) {
      device.commands.clear();
      for (const Text& command : all) run(*driver, "SendCommand_", command);
      return device.commands;
    };
    const std::vector<std::string> apart = {"F/9/", sale, "?/", sale}, plain = {"F/9/", sale, sale};
    EXPECT_EQ(commands({u"F/9/", u"3/S/", u" 3/S/ "}), isNetwork ? apart : plain);
    EXPECT_THAT(commands({u"v/", u"v/", u"Q/", u"Q/", u"A/", u"A/"}), testing::SizeIs(6)) << "nothing to be told apart";
    EXPECT_THAT(commands({u"3/S/", u"v/", u"3/S/"}), testing::SizeIs(3));
    if (!isNetwork) continue;
    // What the register says of itself in between is nobody's business, however it says it.
    device.answer("00/00/06/a/").answer("9E/00/00/").answer("00/00/06/b/");
    EXPECT_EQ(commands({u"F/9/", u"F/9/"}).size(), 3U);
    EXPECT_EQ(outcome(), "0 00/00/06/b/");
    // Who does not answer then is not sent the frame.
    device.script.clear();
    device.answer("").silence(4);
    EXPECT_EQ(commands({u"F/8/", u"F/8/"}).size(), 5U);
    EXPECT_EQ(outcome(), "-3 H ταμειακή δεν Απαντά!");
    // After no answer the repetition is wanted to be known as one.
    device.silence(4);
    EXPECT_EQ(commands({u"F/7/", u"F/7/"}), std::vector<std::string>(5, "F/7/"));
  }
}

TEST_F(Link, ANetworkThatIsDownHasOneBoxACall) {
  connectNetwork();
  called = std::make_shared<fiscalTrevikModule>();
  const Box box{"Λάθος κατά την αποστολή δεδομένων στην θύρα (Ethernet)", 16, "Varlen Fiscal"};
  sockets.failing = "send";
  const double begin = clock.now;
  for (const char* member : {"DrawerOpen", "VoidReceipt"}) {
    call(member);
    EXPECT_EQ(outcome(), "-3 H ταμειακή δεν Απαντά!");
    EXPECT_THAT(screen.boxes, ElementsAre(box)) << "suppressed or not, when all is over";
  }
  EXPECT_NEAR(clock.now - begin, 3 * 4.2, 0.5) << "each attempt's second passes";
  sockets.failing.clear();
  call("DrawerOpen");
  EXPECT_THAT(screen.boxes, IsEmpty());
}

TEST_F(Link, ASilentNetworkIsTriedFourTimes) {
  connectNetwork();
  device.silence(4);
  EXPECT_EQ(transfer(u"F/3/", 180), "");
  EXPECT_EQ(outcome(), "-3 H ταμειακή δεν Απαντά!");
  EXPECT_EQ(device.commands.size(), 4u);
  EXPECT_THAT(serial.sent, IsEmpty());
  EXPECT_EQ(sockets.sent.size(), 8u) << "ENQ and frame each time";
  EXPECT_NEAR(clock.now, 4.2, 0.3);
  device.silence(3).answer("00/00/00/4th/");
  EXPECT_EQ(transfer(u"F/3/"), "00/00/00/4th/");
  EXPECT_EQ(Result, 0);
}

}  // namespace
}  // namespace mirvane::test
