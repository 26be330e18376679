#include <gtest/gtest.h>

#include "recorder/record_line.h"

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

TEST(RecordLine, TheServersKeyIsNotTold) {
  const struct {
    const char* sent;
    const char* received;
    const char* shownSent;
    const char* shownReceived;
  } cases[] = {
      {"]/1/http:~~a.gr~x.php/8080/KEY/////q/12", "00/00/00/", "]/1/http:~~a.gr~x.php/***/***/////***/***",
       "00/00/00/"},
      {"]/1/http://a.gr/x.php/8080/KEY/12", "00/00/00/",
       "]/1/http:/"
       "/***/***/***/***/***",
       "00/00/00/"},
      {",/0/12",
       "00/00/04/1/http:/"
       "/a.gr/x.php/8080/KEY////q/r/",
       ",/0/12",
       "00/00/04/1/http:/"
       "/a.gr/x.php/8080/***////***/***/"},
      {",/0/12", "00/00/04/1/http:~~a/KEY/", ",/0/12", "00/00/04/1/http:~~a/***/"},
      {",/1/12", "8080/KEY/", ",/1/12", "***/***/"},
      {"3/S//12", "00/00/04/1/2/3/KEY", "3/S//12", "00/00/04/1/2/3/KEY"},
  };
  for (const auto& [sent, received, shownSent, shownReceived] : cases) {
    Secrets secrets;
    EXPECT_EQ(secrets.maskedSent(std::string("\x02") + sent + "\x03"), std::string("\x02") + shownSent + "\x03");
    const std::string stx = std::string(received).starts_with("00") ? "\x02" : "";
    EXPECT_EQ(secrets.maskedReceived(stx + received + "\x03"), stx + shownReceived + "\x03");
  }
  Secrets late;
  late.maskedSent("\x02,/0/12\x03");
  late.maskedSent("\x02v/12\x03");
  EXPECT_EQ(late.maskedReceived("\x02"
                                "00/00/00/1/u/80/KEY\x03"),
            "\x02"
            "00/00/00/1/u/80/***\x03");
}

}  // namespace
}  // namespace mirvane::test
