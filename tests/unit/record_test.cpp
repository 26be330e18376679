#include <gtest/gtest.h>

#include <atomic>
#include <future>

#include "facade/fiscal_trevik_module.h"
#include "recorder/recorder.h"
#include "tests/fakes/component_test.h"
#include "text/code_page.h"

namespace mirvane::test {
namespace {

using namespace recorder;

// 2026-11-22 06:31:05.123 UTC.
constexpr std::int64_t kMoment = 1795329065123;

TEST(RecordLine, EventsAreLinesThatAPersonCanReadAndAProgramReadsBack) {
  std::string every;
  for (int byte = 0; byte < 256; ++byte) every += static_cast<char>(byte);
  const struct {
    Event event;
    int zone;
    std::string line;
  } cases[] = {
      {{kMoment, EventKind::kSent, 9,
        "\x02"
        "3/\xD3<\x03"},
       120,
       "2026-11-22 08:31:05.123 +02:00 sent          9 <STX>3/Σ<LT><ETX>\r\n"},
      {{kMoment, EventKind::kDropped, 2, "\x81\xFF"},
       0,
       "2026-11-22 06:31:05.123 +00:00 dropped       2 <x81><xFF>\r\n"},
      {{kMoment, EventKind::kOpen, 2, "COM5: Δεν βρέθηκε\r\n"},
       -570,
       "2026-11-21 21:01:05.123 -09:30 open          2 COM5: Δεν βρέθηκε<CR><LF>\r\n"},
      {{kMoment, EventKind::kEnded, -3, ""}, 0, "2026-11-22 06:31:05.123 +00:00 ended        -3\r\n"},
      {{kMoment, EventKind::kReceived, 256, every}, 120, ""},
      {{kMoment, EventKind::kSent, 3, "  x"}, 120, ""},
  };
  for (const auto& [event, zone, line] : cases) {
    const std::string written = formatted(event, zone);
    EXPECT_TRUE(written.starts_with(line)) << written;
    EXPECT_EQ(parsedEvent(written.substr(0, written.size() - 2)), event) << written;
  }
}

TEST(RecordLine, WhatIsNoLineIsNone) {
  const std::string stamp = "2026-11-22 08:31:05.123 +02:00 ";
  ASSERT_TRUE(parsedEvent(stamp + "sent 1 <ACK>"));
  for (const char* line : {"", "sent", "sent x", "sent 1<ACK>", "sent 1 <ACK", "sent 1 <WHAT>", "sent 1 <x7>",
                           "sent 1 <x41>", "sent 1 é", "sent 99999999999 a", "told 1 a"}) {
    EXPECT_FALSE(parsedEvent(stamp + line)) << line;
  }
  EXPECT_FALSE(parsedEvent("2026-11-22 08:31:05,123 +02:00 sent 1 <ACK>"));
  EXPECT_FALSE(parsedEvent("2026-11-22"));
}

class Record : public DriverTest {
 protected:
  Record() {
    files.recordFolder = moduleState().recordFolder = u"C:\\till\\records";
    run(*driver, "DisConnect_", u"");
    facade = std::make_shared<fiscalTrevikModule>();
  }
  /// What was written, without the time; the record ends with it.
  std::vector<std::string> lines() {
    moduleState().recorder = nullptr;
    std::vector<std::string> all;
    for (const auto& [name, content] : files.below("C:\\till\\records\\")) {
      for (const Text& line : split(fromUtf8(content), u'\n')) {
        if (!line.empty() && line.find(u"started") != 31) all.push_back(toUtf8(line.substr(31, line.size() - 32)));
      }
    }
    return all;
  }
  std::shared_ptr<fiscalTrevikModule> facade;
};

TEST_F(Record, TellsWhatHappensOnTheSerialLine) {
  SupressError_ = false;
  device.silence().answer("0E/00/00/").answer("00/00/00/").answer("00/00/00/").answer("25/00/00/");
  screen.expectsWaits = true;
  run(*facade, "Connect_", u"COM1");
  run(*facade, "FeedPaper", Short{3});
  run(*facade, "FeedPaper", Short{0});
  const std::vector<std::string> expected = {
      "call          0 Connect_",
      "open          0 COM1",
      "ended         0 Connect_, 0 ms",
      "call          0 FeedPaper",
      "sent          3 <CAN><CAN><ENQ>",
      "sent          8 <STX>F/3/15<ETX>",
      "repeat        2",
      "wait         -4 Ο Φορολ. Εκτυπωτής δεν Απαντά σε εντολή !",
      "sent          3 <CAN><CAN><ENQ>",
      "sent          8 <STX>F/3/15<ETX>",
      "received     11 <STX>0E/00/00/<ETX>",
      "sent          1 <ACK>",
      "waited        0",
      "wait         14 Απασχολημένο σε άλλη λειτουργία",
      "sent          3 <CAN><CAN><ENQ>",
      "sent          6 <STX>?/10<ETX>",
      "received     11 <STX>00/00/00/<ETX>",
      "sent          1 <ACK>",
      "waited        0 00/00/00/",
      "sent          3 <CAN><CAN><ENQ>",
      "sent          8 <STX>F/3/15<ETX>",
      "received     11 <STX>00/00/00/<ETX>",
      "sent          1 <ACK>",
      "ended         0 FeedPaper, 11004 ms",
      "call          0 FeedPaper",
      "sent          3 <CAN><CAN><ENQ>",
      "sent          8 <STX>F/0/12<ETX>",
      "received     11 <STX>25/00/00/<ETX>",
      "sent          1 <ACK>",
      "box          48 Varlen Fiscal: Λάθος Φορολ. εκτυπωτή (37)<CR><LF>INVSALEOP",
      "ended        37 FeedPaper, 0 ms: INVSALEOP",
  };
  EXPECT_EQ(lines(), expected);
}

TEST_F(Record, OnANetworkEachDatagramHasALine) {
  connectNetwork();
  device.answer("00/00/00/1/http:~~a/80/KEY/");
  run(*driver, "SendCommand_", u",/0/");
  EXPECT_EQ(lines(), (std::vector<std::string>{"open          0 10.0.0.5:9100", "sent          1 <ENQ>",
                                               "sent          8 <STX>,/0/86<ETX>", "received      1 <ACK>",
                                               "received     29 <STX>00/00/00/1/http:~~a/80/***/<ETX>",
                                               "sent          1 <ACK>"}));
}

TEST_F(Record, AKeyStandsInNoEventWhateverWasSentBefore) {
  const std::string key = "0123456789abcdefABCDEF98765432100f1e2d3c4b5a69788796a5b4c3d2e1f0", mask(64, '*');
  connectNetwork();
  recordBytes(EventKind::kDropped, "\x02\x30\x30/00/00/1/http:~~a/80/" + key + "////\x03");
  recordBytes(EventKind::kReceived, "80/" + key.substr(0, 20));
  recordBytes(EventKind::kReceived, key.substr(20) + "/");
  recordBytes(EventKind::kSent, "\x02!/" + key + "/12\x03");
  for (const auto kind : {EventKind::kCall, EventKind::kEnded, EventKind::kBroken, EventKind::kWaited}) {
    record(kind, 0, fromUtf8("FeedPaper: " + key + " Λάθος"));
  }
  showBox(fromUtf8("80/" + key.substr(0, 31)), 16, u"Varlen Fiscal");
  std::vector<std::string> told = lines();
  told.erase(told.begin());
  EXPECT_EQ(told, (std::vector<std::string>{
                      "dropped      93 <STX>00/00/00/1/http:~~a/80/" + mask + "////<ETX>",
                      "received     23 80/" + mask.substr(0, 20), "received     45 " + mask.substr(20) + "/",
                      "sent         71 <STX>!/" + mask + "/12<ETX>", "call          0 FeedPaper: " + mask + " Λάθος",
                      "ended         0 FeedPaper: " + mask + " Λάθος", "broken        0 FeedPaper: " + mask + " Λάθος",
                      "waited        0 FeedPaper: " + mask + " Λάθος",
                      "box          16 Varlen Fiscal: 80/" + mask.substr(0, 31)}));
}

// What the disk does not take is dropped and counted. The till does not notice.
TEST_F(Record, NoDiskHoldsTheTillUp) {
  std::promise<void> reached;
  std::promise<void> plugged;
  std::atomic<int> appends = 0;
  files.onAppend = [&, held = plugged.get_future().share()](std::size_t count) {
    if (++appends == 1) reached.set_value();
    return held.wait(), count;
  };
  connectNetwork();
  reached.get_future().wait();
  for (int i = 0; i < 3000; ++i) recordBytes(recorder::EventKind::kSent, std::string(4000, 'x'));
  plugged.set_value();
  while (appends < 2) std::this_thread::yield();
  const auto told = lines();
  const auto lost = std::find_if(told.begin(), told.end(), [](const auto& line) { return line.starts_with("lost"); });
  ASSERT_NE(lost, told.end());
  EXPECT_GT(std::stoi(lost->substr(5)), 1000);
}

TEST_F(Record, GoesOnWhenTheDiskTakesMoreAgain) {
  std::atomic<int> appends = 0;
  files.onAppend = [&appends](std::size_t count) { return ++appends == 2 ? 40 : count; };
  connectNetwork();
  while (appends < 1) std::this_thread::yield();
  run(*driver, "DisConnect_", u"");
  while (appends < 2) std::this_thread::yield();
  EXPECT_TRUE(moduleState().recorder->isAlive());
  EXPECT_EQ(lines(), (std::vector<std::string>{"open          0 10.0.0.5:9100", "close         0 10.0.0.5:9100"}));
}

}  // namespace
}  // namespace mirvane::test
