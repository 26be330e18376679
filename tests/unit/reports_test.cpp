#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

class Reports : public DriverTest {
 protected:
  /// The device refuses the journal so many times.
  void refuse(std::size_t times) { answers(std::vector<std::string>(times), "15/00/00/"); }
  /// The device has an empty journal for day 42, and then answers the report so.
  void give(const std::string& reply) { device.answer("00/00/00/42/").answer("00/00/00/3//").answer(reply); }
};

TEST_F(Reports, WithoutTheJournalTheDayStaysOpen) {
  const std::tuple<std::vector<std::string>, int, std::string> failures[] = {
      {{"15/00/00/"}, 21, "z Not closure"}, {{"00/00/00/42/", "79/00/00/"}, 121, "Empty EJ"}};
  for (const bool suppress : {true, false}) {
    SupressError_ = suppress;
    for (const auto& [replies, code, text] : failures) {
      for (int tries = 0; tries < 3; ++tries) answers(replies, "");
      const double begin = clock.now;
      const auto commands = call("issueZReport");
      EXPECT_TRUE(commands.size() == 3 * replies.size() && commands.back() != "x/2/2");
      EXPECT_NEAR(clock.now - begin, 9, 0.5) << "a pause after each of three tries";
      EXPECT_EQ(outcome(), suppress ? "77 before" : std::to_string(code) + " " + text);
      EXPECT_EQ(screen.boxes, unlessSuppressed(errorBox(code, text)));
    }
    refuse(2);
    give("00/00/00/closed/");
    EXPECT_THAT(call("issueZReport"), ElementsAre("A/", "A/", "A/", "Q/", "x/2/2"));
    EXPECT_EQ(outcome(), "0 00/00/00/closed/") << "the third try is as good as the first";
    EXPECT_THAT(call("issueZReprintReport"), ElementsAre("x/9/")) << "nothing is owed";
  }
}

TEST_F(Reports, AReprintTakesTheJournalThatIsOwed) {
  EXPECT_THAT(call("issueZReprintReport"), ElementsAre("x/9/"));
  for (const bool suppress : {true, false}) {
    SupressError_ = suppress;
    refuse(4);
    call("issueZReport");
    EXPECT_THAT(call("issueZReprintReport"), ElementsAre("A/")) << "tried once";
    EXPECT_EQ(outcome(), "21 z Not closure");
    EXPECT_EQ(screen.boxes, unlessSuppressed({"21~z Not closure", 48, "Varlen Fiscal"}));
    give("00/00/00/");
    EXPECT_THAT(call("issueZReprintReport"), ElementsAre("A/", "Q/", "x/9/"));
    EXPECT_THAT(call("issueZReprintReport"), ElementsAre("x/9/")) << "it was taken";
  }
  // One that cannot be written is owed too.
  files.unwritable = u"c:\\bbox\\";
  answers({"42/", "0//ABC123456780042_a.txt/", "1/text/", "2//"});
  EXPECT_EQ(errorOf([&] { call("issueZReport"); }), kTypeMismatch);
  EXPECT_THAT(device.commands, ElementsAre("A/", "Q/", "Q/", "Q/"));
  give("00/00/00/");
  EXPECT_THAT(call("issueZReprintReport"), ElementsAre("A/", "Q/", "x/9/"));
}

TEST_F(Reports, AReprintOfADayThatIsNotTransferredClosesIt) {
  SupressError_ = false;
  device.answer("3D/00/00/");
  give("14/00/00/");
  EXPECT_THAT(call("issueZReprintReport"), ElementsAre("x/9/", "A/", "Q/", "x/2/2"));
  EXPECT_EQ(outcome(), "20 Z closure time limit");
  EXPECT_TRUE(screen.boxes.empty() && !SupressError_) << "suppressed, but not for the caller";
  EXPECT_THAT(screen.journal, ElementsAre("show", "close"));
}

TEST_F(Reports, AnXReportFailsAsAnyCommand) {
  SupressError_ = false;
  device.answer("0D/00/00/");
  EXPECT_THAT(call("issueXReport"), ElementsAre("x/1/"));
  EXPECT_THAT(screen.boxes, ElementsAre(errorBox(13, "No records in fiscal period")));
}

TEST_F(Reports, AReportIsSentByTheDriverThatIsCurrent) {
  moduleState().currentDriver = createObject("fiscalNullModule");
  for (const char* member : {"issueXReport", "issueZReprintReport"}) EXPECT_THAT(call(member), IsEmpty()) << outcome();
}

}  // namespace
}  // namespace mirvane::test
