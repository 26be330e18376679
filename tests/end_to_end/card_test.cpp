#include "records/cls_eft.h"
#include "tests/end_to_end/till.h"
#include "text/code_page.h"

// Card payments, and states that the register ends by itself: the till waits for real seconds.
namespace mirvane::test {
namespace {

TEST_P(Till, AnApprovedCardPaymentClosesTheReceipt) {
  // Busy when the payment comes, and a poll's reply is lost; a serial exchange would be repeated after ten seconds.
  start({"on 5/2 1s busy", isNetwork ? "after 1 on ?/ lost" : "on ?/ late 800"}, {"--card-seconds", "1"});
  EXPECT_EQ(sell(u"A", 1, 9), 0);
  EXPECT_EQ(run("Payment", 2, u"", 9.0, 1, 1), 0) << toUtf8(Exresult);
  expectPaper({"ΣΥΝΟΛΟ", "ΚΑΡΤΑ", " 9,00\n", "EFTPOS 01", "000001", "ΛΗΞΗ"});
  EXPECT_EQ(ask(u"0/"), "9.00/0.00/0.00/0.00/0.00/9.00/1/0/0.00/0.00/0.00/0.00/9.00/0.00/0.00/0.00/");
}

TEST_P(Till, ARefusedCardPaymentLeavesTheReceiptForAnotherTender) {
  start({"on 5/2 paper-end"},
        {"--card-seconds", "1", "--card", "156", "--card", "157", "--card", "159", "--card", "always 112"});
  EXPECT_EQ(sell(u"A", 1, 9), 0);
  for (const int outcome : {25, 156, 157, 159, 112}) {
    EXPECT_EQ(run("Payment", 2, u"", 9.0, 1, 1), outcome) << toUtf8(Exresult);
    EXPECT_EQ(ask(u"5/99/1/1/1/"), "9.00/0.00/0.00/");
  }
  EXPECT_EQ(pay(1, 10), 0);
  expectPaper({"ΜΕΤΡΗΤΑ", " 10,00\n", "ΡΕΣΤΑ", " 1,00\n", "ΛΗΞΗ"});
}

TEST_P(Till, BusyAndPaperEndBookALineOnce) {
  start({"after 1 2s busy 146", "on 3/S//B paper-end", "on 3/S//C busy"});
  EXPECT_EQ(sell(u"A", 1, 9), 0) << "busy to the polls too";
  EXPECT_EQ(sell(u"B", 1, 2), 25) << "nobody waits for paper";
  EXPECT_EQ(sell(u"B", 1, 2), 0);
  EXPECT_EQ(sell(u"C", 1, 3), 0);
  EXPECT_EQ(ask(u"9/"), "14.00/0.00/0.00/0.00/0.00/1/14.00/");
}

TEST_P(Till, CardTerminalsAreProgrammedTestedAndDeleted) {
  start();
  const auto written = std::make_shared<clsEFT>(), read = std::make_shared<clsEFT>();
  written->eftId = read->eftId = 3;
  written->eftEnabled = 1;
  written->eftMDW = 2;
  written->eftIP = u"10.0.0.7";
  written->eftPort = 4100;
  written->eftDescription = u"Ταμείο 1";
  EXPECT_EQ(run("eftRead", *read), 159);
  EXPECT_EQ(run("eftSet", *written), 0);
  EXPECT_EQ(ask(u"E/0/3////////"), "1/10.0.0.7/4100/Ταμειο 1/0/0/0/0/0/0/73100003/2////0/");
  EXPECT_EQ(run("eftRead", *read), 0);
  EXPECT_EQ(run("eftTest", *read), 0);
  read->eftPort = 4101;
  EXPECT_EQ(run("eftTest", *read), 138);
  EXPECT_EQ(run("eftdel", *read), 0);
  EXPECT_EQ(run("eftTest", *written), 159);
}

}  // namespace
}  // namespace mirvane::test
