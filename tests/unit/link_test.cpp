#include "facade/fiscal_trevik_module.h"
#include "link/open_port.h"
#include "session/wait_window.h"
#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

const std::string kAck(1, wire::kAck), kNak(1, wire::kNak), kEnq(1, wire::kEnq), kCan(1, wire::kCan),
    kStx(1, wire::kStx), kEtx(1, wire::kEtx);

class Link : public DriverTest {
 protected:
  /// One exchange at the link's own level. Returns the reply.
  std::string transfer(Text command, Short timeOut = 0) {
    Result = 77;
    return toUtf8(convertTo<Text>(driver->call("Send_", command, Result, Exresult, SupressError_, Pass, timeOut)));
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
  EXPECT_EQ(std::tuple(Result, exresult()), std::tuple(0, "00/00/00/x/"));
  EXPECT_THAT(sent(), ElementsAre(kCan, kCan, kEnq, framed("F/3/15"), kAck));
  // Checksums have two digits.
  for (const auto& [command, checksum] :
       {std::pair(u"ddd", "44"), std::pair(u"@@@@", "00"), std::pair(u"i", "05"), std::pair(u"ΑΑ", "30")}) {
    serial.sent.clear();
    transfer(command);
    EXPECT_EQ(sent()[3], framed(toCodePage(command) + checksum)) << toUtf8(command);
  }
}

TEST_F(Link, LongFramesGoOutInPiecesOf255) {
  const std::pair<std::size_t, std::vector<std::size_t>> cases[] = {
      {251, {255}}, {252, {255, 1}}, {508, {255, 255, 2}}, {1016, {255, 255, 255, 255}}};
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
  std::vector<Chunk> bytes;
  for (std::size_t cut = 0; cut < reply.size(); ++cut) {
    device.raw({{reply.substr(0, cut)}, {reply.substr(cut), 0.3}});
    EXPECT_EQ(transfer(u"v/"), "00/00/00/ab/Α/") << cut;
    bytes.push_back({reply.substr(cut, 1), 0.05});
  }
  device.raw(bytes);
  EXPECT_EQ(transfer(u"v/"), "00/00/00/ab/Α/");
  device.answer("00/00/00/" + std::string(1000, 'x') + "/");
  EXPECT_EQ(transfer(u"v/"), "00/00/00/" + std::string(1000, 'x') + "/");
  EXPECT_EQ(serial.attempts().size(), reply.size() + 2);
  // Control bytes are no part of it.
  device.raw({{kNak + kStx + "00/" + kAck + "00/0" + kNak + "0/a" + kStx + "/" + kEtx + "b/" + kEtx}});
  EXPECT_EQ(transfer(u"v/"), "00/00/00/a/b/");
}

TEST_F(Link, WhatACutAttemptLeftIsNoPartOfTheReply) {
  const std::string reply = framed("0E/00/02/36.35/1/");
  for (std::size_t cut = 0; cut < reply.size(); ++cut) {
    device.raw({{"\x7F" + reply.substr(0, cut)}}).raw({{reply}});
    EXPECT_EQ(transfer(u"F/3/"), "0E/00/02/36.35/1/") << cut;
    EXPECT_EQ(Result, 14);
  }
}

TEST_F(Link, AQuestionIsAskedUntilItIsAnswered) {
  const char16_t* const questions[] = {u"?/", u"v/",   u"9/",   u"0/", u"5/99/1/1/1/",   u"a/",    u"t/", u"h/", u"{/",
                                       u"e/", u"D/5/", u"k/5/", u"s/", u"E/0/1////////", u" ,/0/ "};
  const char16_t* const commands[] = {u"Q/", u"A/", u"#/", u"F/3/", u"5/2///9.00///", u"E/2/1/", u"S/1/", u"t/1/"};
  for (const bool isNetwork : {false, true}) {
    if (isNetwork) connectNetwork();
    exchange("00/00/06/");
    for (const char16_t* question : questions) {
      for (const int unanswered : {2, 3}) {
        device.commands.clear();
        for (const char* reply : {"9C", "00/0", "00/00/0x"}) device.answer(reply);
        if (unanswered == 2) device.script.back() = {{framed("00/00/04/x/")}};
        EXPECT_EQ(transfer(question), unanswered == 2 ? "00/00/04/x/" : "") << toUtf8(question);
        EXPECT_EQ(outcome(), unanswered == 2 ? "0 00/00/04/x/" : "-3 H ταμειακή δεν Απαντά!");
        EXPECT_EQ(device.commands.size(), 3u);
        EXPECT_TRUE(statusOf(*driver)->isTransactionOpen) << "nothing was told of it";
      }
    }
    for (const char16_t* command : commands) {
      device.commands.clear();
      device.answer("9C");
      transfer(command);
      EXPECT_EQ(std::tuple(Result, device.commands.size()), std::tuple(156, 1u)) << toUtf8(command);
    }
  }
  // On the network a reply can be cut behind its status: not one that has no frame at all.
  const std::string cut = kStx + "00/00/04/36.3";
  device.raw({{kAck}, {cut}}).raw({{kAck}, {"00/00/04/36.35/"}});
  EXPECT_EQ(transfer(u"9/"), "00/00/04/36.35/");
  device.raw({{kAck}, {cut}});
  transfer(u"Q/");
  EXPECT_EQ(outcome(), "-3 H ταμειακή δεν Απαντά!") << "what the piece lacks is lost";
}

TEST_F(Link, ASilentDeviceIsAskedAgainEveryTenSecondsWithoutEnd) {
  const double noon = 43200;
  // The later ones pass midnight, which does not change the deadlines.
  const std::tuple<double, Short, double> cases[] = {{noon, 0, 10},     {noon, 5, 10},     {noon, 180, 180},
                                                     {86399.9, 15, 15}, {86390.2, 15, 15}, {86385, 15, 15},
                                                     {86200, 30, 30}};
  for (const auto& [startOfDay, timeOut, first] : cases) {
    SCOPED_TRACE(startOfDay + timeOut);
    clock.startOfDay = startOfDay - clock.now;
    serial.sent.clear();
    const double start = clock.now;
    device.silence(40).answer("00/00/00/late/");
    EXPECT_EQ(transfer(u"F/3/", timeOut), "00/00/00/late/");
    EXPECT_EQ(Result, 0);
    const auto attempts = serial.attempts();
    ASSERT_EQ(attempts.size(), 41u);
    EXPECT_NEAR(attempts[1] - start, first, 0.7);
    for (std::size_t i = 2; i < attempts.size(); ++i) EXPECT_NEAR(attempts[i] - attempts[i - 1], 10, 0.1);
    EXPECT_EQ(serial.sent.size(), 41 * 4 + 1u) << "CAN, CAN, ENQ and frame each time, one ACK";
  }
  EXPECT_THAT(screen.boxes, IsEmpty());
}

TEST_F(Link, ALineThatDiedIsOpenedAnew) {
  const struct {
    double gone, back;  // seconds after the command
    std::vector<std::string> commands;
    std::vector<std::string> opened;
    double until;
  } cases[] = {
      {-1, 0, {"F/3/"}, {"COM1"}, 0},
      // Looked for at once and then every two seconds, whatever the command's own time; the frame that went out goes
      // out again after ten.
      {0.5, 3, {"F/3/", "F/3/"}, {"COM1", "\\\\.\\COM1", "COM1", "\\\\.\\COM1", "COM1"}, 10},
      {0.5, 25, {"F/3/", "F/3/"}, {"COM1"}, 26.5},
  };
  for (const auto& [gone, back, commands, opened, until] : cases) {
    run(*driver, "DisConnect_", u"");
    clock.now += 1;
    connect(u"COM1");
    const double begin = clock.now + (gone < 0 ? 2 : 0);
    serial.unpluggedFrom = begin + gone;
    serial.unpluggedUntil = begin + back;
    clock.now = begin;
    device.commands.clear();
    serial.opened.clear();
    serial.closed.clear();
    serial.settings.clear();
    if (gone > 0) device.answer("00/00/00/", 1);  // never arrives
    EXPECT_EQ(transfer(u"F/3/"), "00/00/00/");
    EXPECT_EQ(device.commands, commands);
    if (back < 10) {
      EXPECT_EQ(serial.opened, opened);
    }
    EXPECT_EQ(serial.settings, "115200,n,8,1");
    EXPECT_EQ(serial.closed.size(), 1U) << "a handle is closed once, and nothing that is none";
    EXPECT_NEAR(clock.now - begin, until, 0.5);
  }
  // Lost for good, the port is still the program's to close.
  serial.unpluggedFrom = clock.now + 0.5;
  serial.unpluggedUntil = 1e9;
  device.silence();
  EXPECT_THROW(transfer(u"F/3/"), std::logic_error) << "it is tried without end";
  clock.now = 0;
  run(*driver, "DisConnect_", u"");
  EXPECT_EQ(Result, 1);
}

TEST_F(Link, ASilentDeviceShowsTheWaitWindow) {
  for (const bool suppressed : {true, false}) {
    SupressError_ = suppressed;
    device.silence(3).answer("00/00/00/");
    moduleState().call = {};
    screen.waits.clear();
    run(*driver, "FeedPaper", Short{3});
    EXPECT_EQ(outcome(), "0 00/00/00/");
    const std::vector<std::string> window = {
        "Μήνυμα Ταμειακής (Varlen Fiscal)|Κατάσταση [-4]|Ο Φορολ. Εκτυπωτής δεν Απαντά σε εντολή !", "close"};
    EXPECT_EQ(screen.waits, suppressed ? std::vector<std::string>{} : window);
    // Four times a second from the third second on; from the tenth on where there is a window.
    EXPECT_NEAR(screen.servings, suppressed ? 112 : 32, 3);
    EXPECT_NEAR(screen.eventRounds, suppressed ? 0 : 80, 3);
    screen.servings = 0;
    EXPECT_FALSE(isWaitShown());
  }
}

TEST_F(Link, StaleInputIsNotTakenForTheReply) {
  serial.inbox.add({{framed("19/00/00/old/") + std::string(200, 'o')}, {framed("19/00/00/")}});
  serial.afterAck = framed("19/00/00/echo/");
  for (const std::string reply : {"00/00/00/1/", "00/00/00/2/"}) {
    device.answer(reply);
    EXPECT_EQ(transfer(u"v/"), reply);
    EXPECT_EQ(serial.waiting(40), std::size_t{0});
  }
}

TEST_F(Link, AReplyWithoutEndTakesNoMoreThanAMebibyte) {
  constexpr std::size_t kMebibyte = 1 << 20;
  device.raw({{std::string(kMebibyte + 50000, 'x')}, {"tail" + kEtx, 0.1}});
  const std::string reply = transfer(u"F/3/");
  EXPECT_LE(reply.size(), kMebibyte);
  EXPECT_GE(reply.size(), kMebibyte - (1 << 16)) << "the oldest is forgotten in blocks";
  EXPECT_TRUE(reply.ends_with("xxtail"));
}

TEST_F(Link, WithoutAnOpenPortNothingIsSent) {
  thePort().handle = -1;
  for (const bool isNetwork : {false, true}) {
    portProp().tcpPort = isNetwork;
    EXPECT_EQ(transfer(u"F/3/"), "");
    EXPECT_EQ(outcome(), "-6 Κλειστή θύρα");
  }
  EXPECT_EQ(serial.sent.size() + sockets.sent.size(), 0u);
}

TEST_F(Link, TraceLines) {
  moduleState().traceActive = true;
  device.answer("19/00/00/");
  transfer(u"F/3/");
  EXPECT_THAT(screen.trace, ElementsAre("34:56 ENQ", "34:56 send:     " + framed("F/3/15"), "34:56 reply     19/00/00/",
                                        "34:56 exres     Printer paper end detected"));
  moduleState().traceActive = false;
  transfer(u"F/3/");
  EXPECT_EQ(screen.trace.size(), 4u) << "switched off";
}

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

TEST_F(Link, AnAckThatCouldNotBeWrittenIsWrittenAgain) {
  serial.failingAcks = 1;
  transfer(u"F/3/");
  serial.sent.clear();
  serial.unpluggedFrom = clock.now;
  serial.unpluggedUntil = clock.now + 1;
  transfer(u"F/3/");
  EXPECT_THAT(sent(), ElementsAre(kAck, kCan, kCan, kEnq, framed("F/3/15"), kAck));
  serial.failingAcks = 1;
  transfer(u"F/3/");
  run(*driver, "DisConnect_", u"");
  connect(u"COM1");
  serial.sent.clear();
  transfer(u"F/3/");
  EXPECT_EQ(sent().front(), kCan) << "forgotten";
  connectNetwork();
  for (const int failing : {1, 2}) {
    sockets.sent.clear();
    sockets.failingAcks = failing;
    transfer(u"v/");
    EXPECT_EQ(Result, 0);
    EXPECT_EQ(sockets.sent.size(), failing == 1 ? 3U : 2U) << "once more, at once";
  }
}

TEST_F(Link, AnAnswerThatTellsNothingIsNotAcknowledged) {
  const auto acks = [](const std::vector<std::string>& bytes) { return std::ranges::count(bytes, kAck); };
  for (const bool isNetwork : {false, true}) {
    if (isNetwork) connectNetwork();
    for (const char16_t* command : {u"?/", u"F/3/"}) {
      serial.sent.clear();
      sockets.sent.clear();
      device.script.clear();
      for (const char* reply : {"9C", "9", ""}) device.answer(reply);
      transfer(command);
      EXPECT_EQ(acks(isNetwork ? sockets.sent : sent()), 1) << "of the question's the third";
      EXPECT_EQ(device.commands.size(), command[0] == u'?' ? 3U : 1U);
      device.commands.clear();
    }
  }
  device.script.clear();
  device.raw({{kAck}}).raw({{kAck}}).answer("9C/00/00/");
  sockets.sent.clear();
  transfer(u"?/");
  EXPECT_EQ(std::tuple(Result, acks(sockets.sent)), std::tuple(156, 1)) << "none behind the register's ACK";
}

// Two adapters may have changed their names, and something else may sit on the line.
TEST_F(Link, WhoAnswersALineThatCameBackIsAsked) {
  const std::string own = "00/00/00/MVE1/", other = "00/00/00/MVE2/", stranger = "-1 Πρόβλημα στην Θύρα :COM1";
  called = std::make_shared<fiscalTrevikModule>();
  moduleState().fiscalType = FISCAL_VARLENFISCAL2;
  screen.expectsWaits = true;
  const auto unplug = [this] {
    serial.unpluggedFrom = clock.now;
    serial.unpluggedUntil = clock.now + 1;
  };
  const auto restart = [&](bool isKnown) {
    run(*driver, "DisConnect_", u"");
    device.script.clear();
    driver = std::make_shared<FiscalVarlenModule2>();
    connect(u"COM1");
    Text number;
    if (isKnown) device.answer(own);
    if (isKnown) run(*driver, "getSerialNumber", number);
    unplug();
  };
  const std::tuple<const char*, Strings, Strings, std::string> cases[] = {
      {"the same register", {"00/00/00/", own}, {"p/1/", "a/"}, "0 00/00/00/"},
      {"another one", {"00/00/00/", other}, {"p/1/", "a/"}, stranger},
      {"one that does not tell", {"00/00/00/", "0E/00/00/"}, {"p/1/", "a/"}, "0 00/00/00/"},
      {"behind a wait", {"9E/00/00/", "9E/00/00/", "00/00/00/", other}, {"p/1/", "?/", "?/", "a/"}, stranger},
      {"no register", {"  0.250kg", "p/1/25", "p/1/25"}, {"p/1/", "p/1/", "p/1/"}, "-3 H ταμειακή δεν Απαντά!"},
      {"noise, then the same", {"  0.250kg", "00/00/00/", own}, {"p/1/", "p/1/", "a/"}, "0 00/00/00/"}};
  for (const auto& [what, replies, commands, told] : cases) {
    SCOPED_TRACE(what);
    restart(true);
    for (const std::string& reply : replies) device.answer(reply);
    EXPECT_EQ(call("DrawerOpen"), commands);
    EXPECT_EQ(outcome(), told);
    EXPECT_EQ(driver->session.lastReply().substr(0, 2), told == stranger || told[0] == '0' ? u"00" : u"");
  }
  restart(true);
  device.answer("00/00/00/").answer(other);
  EXPECT_EQ(call("VoidReceipt").size(), 2U);
  EXPECT_EQ(outcome(), stranger) << "to the call's end";
  EXPECT_THAT(call("DrawerOpen"), IsEmpty());
  EXPECT_EQ(outcome(), "-6 Κλειστή θύρα");
  // Two seconds of silence tell nothing, and it is asked once more behind the next answer.
  restart(true);
  device.answer("00/00/00/").silence();
  const double begin = clock.now;
  EXPECT_THAT(call("DrawerOpen"), ElementsAre("p/1/", "a/"));
  EXPECT_NEAR(clock.now - begin, 4, 0.5) << "the line's second look, and the two seconds";
  device.answer("00/00/00/").answer(own);
  EXPECT_THAT(call("DrawerOpen"), ElementsAre("p/1/", "a/"));
  EXPECT_THAT(call("DrawerOpen"), ElementsAre("p/1/"));
  restart(false);
  EXPECT_THAT(call("DrawerOpen"), ElementsAre("p/1/")) << "nothing is known to hold it against";
}

TEST_F(Link, WhenAFrameGoesOutAgainOnALineThatFailed) {
  const struct {
    const char16_t* command;
    Short timeOut;
    double again;
  } cases[] = {{u"F/3/", 0, 10}, {u"F/3/", 60, 10}, {u"5/1/", 60, 60}, {u"E/2/1/", 0, 10}};
  for (const auto& [command, timeOut, again] : cases) {
    device.silence();
    const double begin = clock.now;
    serial.unpluggedFrom = begin + 1;
    serial.unpluggedUntil = begin + 4;
    serial.opened.clear();
    transfer(command, timeOut);
    EXPECT_NEAR(clock.now - begin, again, 0.7) << toUtf8(command) << timeOut;
    EXPECT_EQ(serial.opened.size(), 5U) << "looked for every two seconds";
  }
  // A slow line that takes nothing for a while is none that failed, until it takes nothing three times.
  for (const int attempts : {2, 3}) {
    serial.opened.clear();
    serial.takesNothing = attempts * 4;
    device.commands.clear();
    EXPECT_EQ(transfer(u"F/3/"), "00/00/00/");
    EXPECT_EQ(serial.opened.size(), attempts == 3 ? 1U : 0U);
    EXPECT_THAT(device.commands, ElementsAre("F/3/"));
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

// The wait window, for every exchange of every member, and in front of the window that stands.
TEST_F(Link, SilenceIsSeenWhereverItIs) {
  const std::string silence =
      "Μήνυμα Ταμειακής (Varlen Fiscal)|Κατάσταση [-4]|Ο Φορολ. Εκτυπωτής δεν Απαντά σε εντολή !";
  const auto facade = std::make_shared<fiscalTrevikModule>();
  called = facade;
  screen.expectsWaits = true;
  const auto pay = [&] { call("Payment", 1, u"CASH", 1.0, 0, 0); };
  const std::tuple<const char*, std::vector<std::string>, std::function<void()>> cases[] = {
      {"the v/ behind a payment", {"", "0.00/", ""}, pay},
      {"the end of the server's dialogue",
       {""},
       [&] {
         Text pass;
         facade->call("setServerSettings", Byte{1}, u"a|b", u"80", u"key", Result, Exresult, SupressError_, pass);
       }},
      {"the journal", {"42/"}, [&] { call("issueZReport"); }},
      {"the closing", {"42/", "3//"}, [&] { call("issueZReport"); }}};
  for (const bool suppressed : {false, true}) {
    SupressError_ = suppressed;
    for (const auto& [what, replies, member] : cases) {
      SCOPED_TRACE(what);
      answers(replies);
      device.silence(1);
      answers({"3//"});
      screen.waits.clear();
      screen.servings = screen.eventRounds = 0;
      member();
      EXPECT_EQ(screen.waits, suppressed ? std::vector<std::string>{} : (std::vector<std::string>{silence, "close"}));
      EXPECT_GE(screen.servings, 28) << "from the third second on";
      device.script.clear();
    }
  }
  SupressError_ = true;
  device.answer("9E/00/00/").silence(1).answer("9C/00/00/");
  screen.waits.clear();
  call("DrawerOpen");
  ASSERT_EQ(screen.waits.size(), 2U);
  EXPECT_EQ(screen.waits[1], silence) << "in the window that stands";
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
