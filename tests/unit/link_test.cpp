#include "tests/fakes/link_fixture.h"
#include "text/code_page.h"

namespace mirvane::test {
namespace {

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

}  // namespace
}  // namespace mirvane::test
