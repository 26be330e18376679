#include "emulator/replay.h"

#include <gtest/gtest.h>

namespace mirvane::emulator {
namespace {

using End = Replay::End;

/// Lines of a record out of "SECOND.MS KIND NUMBER TEXT".
std::string recordOf(const std::vector<std::string>& lines) {
  std::string record;
  for (const std::string& line : lines)
    record += "2026-11-22 08:31:" + line.substr(0, 6) + " +02:00 " + line.substr(7) + "\r\n";
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
  return log.text + (replay.end() ? replay.report() : "more is to come");
}

const std::string kStart = "\x18\x18\x05",
                  kSale =
                      "\x02"
                      "3/S//\xCA/15\x03",
                  kAck = "\x06";
const std::vector<std::string> kConversation = {
    "00.000 call 0 ItemSale",     "00.100 sent 3 <CAN><CAN><ENQ>", "00.100 sent 12 <STX>3/S//Κ/15<ETX>",
    "00.300 received 4 <STX>00/", "00.350 received 7 00/06/<ETX>", "00.350 sent 1 <ACK>",
    "07.000 dropped 4 late",      "07.000 sent 3 <CAN><CAN><ENQ>", "07.000 ended 0 ItemSale, 7000 ms"};
const std::string kAnswers =
    "200 ms \x02"
    "00/, 250 ms 00/06/\x03, 0 ms late, ";

TEST(Replay, AnswersWhatTheTillSendsInItsTimeHoweverItIsCut) {
  const std::string bytes = kStart + kSale + kAck + kStart;
  for (std::size_t size = 1; size <= bytes.size(); ++size) {
    std::vector<std::string> pieces;
    for (std::size_t at = 0; at < bytes.size(); at += size) pieces.push_back(bytes.substr(at, size));
    EXPECT_EQ(outcomeOf(recordOf(kConversation), pieces), kAnswers + "as recorded, up to line 9, the end") << size;
  }
}

TEST(Replay, ARecordThatIsCutAnywherePlaysUpToThere) {
  const std::string record = recordOf(kConversation);
  const std::size_t firstSent = recordOf({kConversation[0], kConversation[1]}).size();
  for (std::size_t size = 0; size < record.size(); ++size) {
    const std::string cut = record.substr(0, size);
    if (size < firstSent) {
      EXPECT_THROW(Replay{cut}, ReplayError) << size;
      continue;
    }
    const std::string outcome = outcomeOf(cut, {kStart + kSale + kAck + kStart, kStart});
    const std::size_t told = outcome.find("as recorded, up to line");
    ASSERT_NE(told, std::string::npos) << outcome;
    EXPECT_TRUE(kAnswers.starts_with(outcome.substr(0, told))) << outcome;
    EXPECT_NE(outcome.find("not whole"), std::string::npos) << outcome;
  }
  for (const char* none : {"", "\n", "no record\r\n", "<html>", "\x02\x03"})
    EXPECT_THROW(Replay{none}, ReplayError) << none;
  EXPECT_THROW(Replay{recordOf({"00.000 started 7 till.exe", "00.000 received 1 x"})}, ReplayError);
}

TEST(Replay, TheFirstDifferenceIsTold) {
  const std::string line3 = "different at line 3 of the record\n  then  sent         11 <STX>3/S//Κ/15<ETX>\n  now   ";
  const std::tuple<std::string, std::string> cases[] = {{kStart + "\x02"
                                                                  "3/S//<B/15\x03",
                                                         line3 + "sent         12 <STX>3/S//<LT>B/15<ETX>"},
                                                        {kStart + kStart, line3 + "sent          1 <CAN>"},
                                                        {kStart + "\x02"
                                                                  "3/S\x05",
                                                         line3 + "sent          4 <STX>3/S"}};
  for (const auto& [bytes, told] : cases) EXPECT_EQ(outcomeOf(recordOf(kConversation), {bytes}), told);
  EXPECT_TRUE(outcomeOf(recordOf(kConversation), {kStart + kSale + kAck + kStart, kAck})
                  .ends_with("now   sent          1 <ACK>"));
  Replay stopped(recordOf(kConversation));
  stopped.stop();
  EXPECT_EQ(stopped.end(), End::kDifferent);
}

TEST(Replay, TheLineBreaksWhereItBroke) {
  const std::string whole = kStart + kSale;
  std::vector<std::string> lines = {"00.000 sent 3 <CAN><CAN><ENQ>", "00.000 sent 12 <STX>3/S//Κ/15<ETX>"};
  const std::vector<std::string> after = {"10.000 broken 5 gone", "10.000 open 2 COM5",  "12.000 open 2 COM5",
                                          "13.000 open 0 COM5",   "13.000 sent 1 <ENQ>", "13.500 received 1 <ACK>"};
  const auto with = [&lines, &after](std::vector<std::string> between) {
    between.insert(between.begin(), lines.begin(), lines.end());
    between.insert(between.end(), after.begin(), after.end());
    return recordOf(between);
  };
  const std::string back = "500 ms \x06, as recorded, up to line ";
  // Away from the frame on, which got no answer; from half an answer on; and while the till was idle.
  EXPECT_EQ(outcomeOf(with({}), {whole, "\x05"}), "0 ms away 12500 ms, " + back + "8, the end");
  EXPECT_EQ(outcomeOf(with({"00.100 received 1 x"}), {whole, kStart, "\x05"}),
            "100 ms x, 10000 ms away 2500 ms, " + back + "9, the end");
  EXPECT_EQ(outcomeOf(with({"00.100 received 1 x", "00.200 sent 1 <ACK>"}), {whole + kAck, "\x05"}),
            "100 ms x, 0 ms away 2500 ms, " + back + "10, the end");
  // Only a part of the frame had been written.
  lines[1] = "00.000 sent 5 <STX>3/S/";
  EXPECT_EQ(outcomeOf(with({}), {whole, "\x05"}), "0 ms away 12500 ms, " + back + "8, the end");
}

TEST(Replay, SecretsCountAsEqual) {
  const std::string record = recordOf({"00.000 sent 9 <STX>]/1/http:/***/***/***<ETX>"});
  EXPECT_EQ(outcomeOf(record, {"\x02]/1/http:/80/KEY/77\x03"}), "as recorded, up to line 1, the end");
  EXPECT_NE(outcomeOf(record, {"\x02]/0/http:/80/KEY/77\x03"}).find("now   sent"), std::string::npos);
}

}  // namespace
}  // namespace mirvane::emulator
