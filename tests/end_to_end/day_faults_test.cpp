#include <sys/mount.h>

#include <functional>

#include "tests/end_to_end/journal_folders.h"
#include "tests/end_to_end/till.h"
#include "text/code_page.h"

// What can go wrong while a day is closed: nothing is lost, and closing again ends well.
namespace mirvane::test {
namespace {

namespace fs = std::filesystem;

class ClosingTheDay : public Till {
 protected:
  /// A register with a receipt in its journal, which takes some seconds to hand over when it is `paced`.
  void startDay(const std::vector<std::string>& faults, bool paced = false) {
    std::vector<std::string> options = {"--journal", folders.device, "--pad-journal", "60000"};
    if (paced) options.emplace_back("--paced");
    start(faults, options);
    EXPECT_EQ(sell(u"Καφές", 1, 2.5), 0);
    EXPECT_EQ(pay(1, 2.5), 0);
  }
  /// The automation error of closing the day, or its Result.
  std::uint32_t close() {
    try {
      return static_cast<std::uint16_t>(run("issueZReport"));
    } catch (const AutomationError& error) {
      return static_cast<std::uint32_t>(error.code());
    }
  }
  void expectStillOpen() {
    EXPECT_EQ(ask(u"#/"), "0/") << "the day is not closed";
    EXPECT_EQ(emulator->paper().find("Ζ ΑΝΑΦΟΡΑ"), std::string::npos);
  }
  void expectClosed() {
    EXPECT_EQ(close(), 0U) << toUtf8(Exresult);
    folders.expectSaved("0001");
    EXPECT_EQ(ask(u"#/"), "1/");
    EXPECT_EQ(sell(u"Νερό", 1, 0.5), 0);
  }

  static constexpr std::uint32_t kFileError = 0x80020005;

  JournalFolders folders;
};

INSTANTIATE_TEST_SUITE_P(Over, ClosingTheDay, kLines, lineName);

TEST_P(ClosingTheDay, WaitsForAFolderThatCanBeWritten) {
  startDay({});
  fs::create_directories("c:");
  std::ofstream("c:/bboxBackUp") << "a file where the folder should be";
  EXPECT_EQ(close(), kFileError);
  expectStillOpen();
  fs::remove("c:/bboxBackUp");
  expectClosed();
}

TEST_P(ClosingTheDay, SurvivesAFullDisk) {
  startDay({});
  fs::create_directories("c:/bboxBackUp");
  ASSERT_EQ(mount("none", "c:/bboxBackUp", "tmpfs", 0, "size=32k"), 0) << "this test must be root";
  EXPECT_EQ(close(), kFileError);
  expectStillOpen();
  const FileMap expected = folders.handedOver("0001");
  for (const auto& [name, bytes] : JournalFolders::filesIn("c:/bboxBackUp/MVE25000017/0001")) {
    EXPECT_EQ(bytes, expected.at(name)) << "half a file";
  }
  ASSERT_EQ(umount("c:/bboxBackUp"), 0);
  expectClosed();
}

TEST_P(ClosingTheDay, OutlastsASilentLine) {
  startDay({"after 5 on Q/ 2 silence"});
  expectClosed();
}

TEST_P(ClosingTheDay, TakesTheJournalWhilePaperIsOut) {
  startDay({"after 5 on Q/ 20 status 04"});
  expectClosed();
}

TEST_P(ClosingTheDay, ComesBackToACallerWhoRunsOutOfPaper) {
  startDay({"on x/2/2 paper-end"});
  EXPECT_EQ(close(), 25U);
  EXPECT_TRUE(status()->isDayOpen);
  expectClosed();
}

TEST_P(ClosingTheDay, TriesThreeTimes) {
  startDay({"after 3 on Q/ 2 code 135"});
  expectClosed();
  EXPECT_EQ(pay(1, 0.5), 0);
  EXPECT_EQ(ask(u"9/").substr(0, 4), "0.00");
}

TEST_P(ClosingTheDay, CanBeginAgainAfterTheProgramWasKilled) {
  startDay({}, true);
  run("DisConnect_", fromUtf8(port));
  const pid_t other = fork();
  if (other == 0) {
    run("Connect_", fromUtf8(port));
    close();
    _exit(0);
  }
  // In the middle of the first file.
  for (int i = 0; JournalFolders::filesIn(folders.device).empty() && i < 500; ++i) usleep(10'000);
  usleep(500'000);
  EXPECT_EQ(kill(other, SIGKILL), 0);
  int status = 0;
  waitpid(other, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status)) << "the day was closed before";
  EXPECT_TRUE(JournalFolders::filesIn("c:/bbox/MVE25000017/0001").empty());
  ASSERT_EQ(run("Connect_", fromUtf8(port)), 0);
  expectClosed();
}

}  // namespace
}  // namespace mirvane::test
