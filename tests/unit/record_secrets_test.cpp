#include <gtest/gtest.h>

#include <algorithm>

#include "recorder/secrets.h"

namespace mirvane::test {
namespace {

using namespace recorder;

TEST(RecordSecrets, TheServersKeyIsKnownByItsCommand) {
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
    EXPECT_EQ(secrets.maskedSent(std::string("\x02") + sent + "\x03", sent[0] != '3'),
              std::string("\x02") + shownSent + "\x03");
    const std::string stx = std::string(received).starts_with("00") ? "\x02" : "";
    EXPECT_EQ(secrets.masked(EventKind::kReceived, stx + received + "\x03"), stx + shownReceived + "\x03");
  }
  Secrets late;
  late.maskedSent("\x02,/0/12\x03", true);
  late.maskedSent("\x02v/12\x03", false);
  EXPECT_EQ(late.masked(EventKind::kReceived,
                        "\x02"
                        "00/00/00/1/u/80/KEY\x03"),
            "\x02"
            "00/00/00/1/u/80/***\x03");
}

TEST(RecordSecrets, AKeyIsKnownByItsLook) {
  const std::string least = "0123456789abcdefABCDEF9876543210", rest = "ABCDEF0123456789";
  const auto stars = [](std::size_t count) { return std::string(count, '*'); };
  // The pieces of one direction, and what is shown of them.
  const std::pair<std::vector<std::string>, std::vector<std::string>> cases[] = {
      {{"/" + least + "/"}, {"/" + stars(32) + "/"}},
      {{"/" + least + rest + "g" + least + "\x03"}, {"/" + stars(48) + "g" + stars(32) + "\x03"}},
      {{"/" + least.substr(1) + "/", least.substr(1) + "/"}, {"/" + least.substr(1) + "/", stars(31) + "/"}},
      {{"/12345678"}, {"/********"}},
      {{"12345678/"}, {"********/"}},
      {{"/1234567", "/7654321/", "7654321"}, {"/1234567", "/7654321/", "7654321"}},
      {{"/1234567", "8/", "8"}, {"/1234567", "*/", "8"}},
      {{"", "1234", "", "5678", "9", "/"}, {"", "1234", "", "****", "*", "/"}}};
  for (const auto& [pieces, shown] : cases) {
    for (const auto kind : {EventKind::kSent, EventKind::kReceived, EventKind::kDropped}) {
      Secrets secrets;
      for (std::size_t i = 0; i < pieces.size(); ++i) EXPECT_EQ(secrets.masked(kind, pieces[i]), shown[i]) << pieces[0];
    }
  }
}

TEST(RecordSecrets, AKeyInPiecesLosesSevenDigitsAtMost) {
  const std::string bytes =
      "\x02\x30\x30/00/00/1/u/80/0123456789abcdefABCDEF98765432100f1e2d3c4b5a69788796a5b4c3d2e1f0//\x03";
  for (std::size_t size = 1; size < bytes.size(); ++size) {
    for (std::size_t first = 1; first <= size; ++first) {
      Secrets secrets;
      std::string shown = secrets.masked(EventKind::kReceived, bytes.substr(0, first));
      for (std::size_t at = first; at < bytes.size(); at += size) {
        // Neither another direction nor another text comes between.
        secrets.masked(EventKind::kSent, "\x06");
        secrets.masked(EventKind::kWait, "/");
        shown += secrets.masked(at % 2 == 0 ? EventKind::kReceived : EventKind::kDropped, bytes.substr(at, size));
      }
      ASSERT_EQ(shown.size(), bytes.size());
      EXPECT_GE(std::count(shown.begin(), shown.end(), '*'), 57) << shown;
      EXPECT_TRUE(shown.starts_with(bytes.substr(0, 17)) && shown.ends_with("//\x03")) << shown;
    }
  }
}

}  // namespace
}  // namespace mirvane::test
