#include "emulator/replay.h"

#include <gtest/gtest.h>

#include <sstream>

namespace mirvane::emulator {
namespace {

/// A record out of "SECOND.MS KIND NUMBER TEXT", a line each.
std::string recordOf(const std::string& lines) {
  std::stringstream stream(lines);
  std::string record;
  for (std::string line; std::getline(stream, line);)
    record += "2026-11-22 08:31:" + line.insert(6, " +02:00") + "\r\n";
  return record;
}

/// Writes down what the till gets, and when.
struct Log : Outlet {
  void send(std::string_view bytes, std::uint32_t delay) override {
    text += std::to_string(delay) + " ms " + std::string(bytes) + ", ";
  }
  void sendCopy(std::string_view, std::uint32_t) override { FAIL(); }
  void drop() override { FAIL(); }
  bool hurry() override { return std::exchange(isBreaking, false); }
  void unplug(std::uint32_t delay, std::uint32_t length) override {
    text += std::to_string(delay) + " ms away " + std::to_string(length) + " ms, ";
    isBreaking = delay > 0;
  }

  std::string text;
  bool isBreaking = false;
};

/// What the till gets of `record` when it sends `pieces`, and how it ends.
std::string outcomeOf(const std::string& record, const std::vector<std::string>& pieces) {
  Replay replay(record);
  Log log;
  for (const std::string& piece : pieces) replay.feed(piece, log);
  replay.stop();
  return log.text + replay.report();
}

const std::string kStart = "\x18\x18\x05", kRecordedSale = "\x02\x33/S//\xCA/15\x03", kAck = "\x06";
const std::string kRecord = recordOf(
    "00.000 call 0 ItemSale\n00.100 sent 3 <CAN><CAN><ENQ>\n00.100 sent 11 <STX>3/S//Κ/15<ETX>\n"
    "00.300 received 4 <STX>00/\n00.350 received 7 00/06/<ETX>\n00.350 sent 1 <ACK>\n07.000 dropped 4 late\n"
    "07.000 sent 3 <CAN><CAN><ENQ>\n07.000 ended 0 ItemSale, 7000 ms\n");

TEST(Replay, AnswersInTimeHoweverTheBytesAreCutAndUpToWhereTheRecordIsCut) {
  const std::string bytes = kStart + kRecordedSale + kAck + kStart;
  const std::string answers = "200 ms \x02\x30\x30/, 250 ms 00/06/\x03, 0 ms late, ";
  for (std::size_t size = 1; size <= bytes.size(); ++size) {
    std::vector<std::string> pieces;
    for (std::size_t at = 0; at < bytes.size(); at += size) pieces.push_back(bytes.substr(at, size));
    EXPECT_EQ(outcomeOf(kRecord, pieces), answers + "as recorded, up to line 9, the end") << size;
  }
  for (std::size_t size = 0; size < kRecord.size(); ++size) {
    const std::string cut = kRecord.substr(0, size);
    if (size < kRecord.find("\r\n", kRecord.find("<CAN>")) + 2) {
      EXPECT_THROW(Replay{cut}, ReplayError) << size;
      continue;
    }
    const std::string outcome = outcomeOf(cut, {bytes, kStart});
    EXPECT_TRUE(answers.starts_with(outcome.substr(0, outcome.find("as recorded, up to line")))) << outcome;
    EXPECT_NE(outcome.find("incomplete"), std::string::npos) << outcome;
  }
  for (const char* none : {"\n", "no record\r\n", "\x02\x03"}) EXPECT_THROW(Replay{none}, ReplayError) << none;
}

TEST(Replay, TheFirstDifferenceIsToldAndNoSecretIsOne) {
  const std::string here = "different at line 3 of the record\n  then  sent         11 <STX>3/S//Κ/15<ETX>\n  now   ";
  const std::string secret = recordOf("00.000 sent 9 <STX>]/1/http:/***/***/***<ETX>\n");
  const std::string stars(32, '*'), digits(32, 'a'), key = recordOf("00.000 sent 39 <STX>!/" + stars + "/77<ETX>\n");
  const std::string torn =
      recordOf("00.000 sent 11 <STX>!/********\n00.000 broken 5 x\n09.000 open 0 COM5\n09.000 sent 1 <ENQ>\n");
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {key, "\x02!/" + digits + "/77\x03", "as recorded, up to line 1, the end"},
      {key, "\x02!/" + digits + "/78\x03",
       "different at line 1 of the record\n  then  sent         39 <STX>!/" + stars +
           "/77<ETX>\n"
           "  now   sent         39 <STX>!/" +
           stars + "/78<ETX>"},
      {torn, "\x02!/" + digits + "/77\x03",
       "0 ms away 4500 ms, different at line 4 of the record\n"
       "  then  sent          1 <ENQ>\n  now   the end"},
      {kRecord, kStart + "\x02\x33/S//<B/15\x03", here + "sent         12 <STX>3/S//<LT>B/15<ETX>"},
      {kRecord, kStart + kStart, here + "sent          1 <CAN>"},
      {kRecord, kStart + "\x02\x33/S\x05", here + "sent          4 <STX>3/S"},
      {kRecord, kStart, here + "the end"},
      {secret, "\x02]/1/http:/80/KEY/77\x03", "as recorded, up to line 1, the end"},
      {secret, "\x02]/0/http:/80/KEY/77\x03",
       "different at line 1 of the record\n  then  sent         23 <STX>]/1/http:/***/***/***<ETX>\n"
       "  now   sent         23 <STX>]/0/http:/***/***/***<ETX>"}};
  for (const auto& [record, bytes, told] : cases) EXPECT_EQ(outcomeOf(record, {bytes}), told);
}

TEST(Replay, TheLineBreaksWhereItBroke) {
  const std::string whole = kStart + kRecordedSale,
                    sent = "00.000 sent 3 <CAN><CAN><ENQ>\n00.000 sent 11 <STX>3/S//Κ/15<ETX>\n";
  const std::string torn = "00.000 sent 3 <CAN><CAN><ENQ>\n00.000 sent 5 <STX>3/S/\n";
  const std::string end = "20.000 open 0 COM5\n20.001 sent 1 <ENQ>\n20.501 received 1 <ACK>\n";
  // What is recorded up to the break, what the till sends, and what it gets.
  const std::tuple<std::string, std::vector<std::string>, std::string> cases[] = {
      {sent + "10.000 broken 5 x\n10.000 open 2 COM5: x\n", {whole}, "0 ms away 15000 ms"},
      {sent + "10.000 broken 5 x\n", {whole}, "0 ms away 10000 ms"},
      {torn + "10.000 broken 5 x\n", {whole}, "0 ms away 10000 ms"},
      {sent + "10.000 received 1 x\n10.000 broken 5 x\n", {whole, kStart}, "5000 ms x, 7500 ms away 6250 ms"},
      {sent + "00.100 received 1 x\n00.100 sent 1 <ACK>\n20.000 broken 5 x\n",
       {whole + kAck},
       "100 ms x, 0 ms away 0 ms"}};
  for (auto [record, pieces, gets] : cases) {
    pieces.emplace_back("\x05");
    EXPECT_TRUE(outcomeOf(recordOf(record + end), pieces).starts_with(gets + ", 500 ms \x06, as recorded")) << gets;
  }
}

}  // namespace
}  // namespace mirvane::emulator
