#include <filesystem>

#include "tests/end_to_end/till.h"

namespace mirvane::test {
namespace {

class Replayed : public Till {
 protected:
  ~Replayed() override { std::filesystem::remove_all(folder); }

  /// What a till's day comes to, call by call.
  std::string day() {
    std::string outcomes;
    const auto tell = [this, &outcomes] { outcomes += std::to_string(Result) + " " + toUtf8(Exresult) + "\n"; };
    sell(u"Καφές", 2, 1.80), tell();
    sell(u"Τυρόπιτα", 1, 2.20), tell();
    run("commentPrinterPrint", u"ζεστή", 1), tell();
    run("Payment", 1, u"", 10, 0, 0), tell();
    run("Payment", 1, u"", 0, 0, 0), tell();
    run("DisConnect_", fromUtf8(port));
    emulator = nullptr;
    return outcomes;
  }

  const std::string folder = testing::TempDir() + "mirvane-records-" + std::to_string(getpid());
};

INSTANTIATE_TEST_SUITE_P(Line, Replayed, kLines, lineName);

TEST_P(Replayed, TheSameTillSeesWhatItSaw) {
  std::filesystem::create_directories(folder);
  moduleState().recordFolder = fromUtf8(folder);
  const std::string link = folder + "-till";
  // Over the serial line the first item meets a line that goes away for a while.
  start({isNetwork ? "on 3/S lost" : "on 3/S unplug-after 2", "next late 900", "on P/ noise",
         "after 1 on 3/ duplicate 60"},
        {}, link);
  const std::string then = day();
  moduleState().recorder = nullptr;
  moduleState().recordFolder.clear();
  const std::filesystem::path record = *std::filesystem::directory_iterator(folder);
  start({}, {"--replay", record.string()}, link);
  EXPECT_EQ(day(), then);
}

}  // namespace
}  // namespace mirvane::test
