#include "tests/end_to_end/till.h"
#include "text/code_page.h"

namespace mirvane::test {
namespace {

INSTANTIATE_TEST_SUITE_P(Over, Till, kLines, lineName);

TEST_P(Till, AWholeReceiptWithChange) {
  start();
  EXPECT_EQ(sell(u"Καφές/γάλα", 2, 2.5), 0);
  EXPECT_EQ(sell(u"Νερό", 3, 0.333, 13), 0);
  EXPECT_EQ(ask(u"9/"), "5.00/0.99/0.00/0.00/0.00/1/5.99/");
  EXPECT_EQ(run("ItemVoid", u"Νερό", 1.0, 0.333, 13.0, 1), 0);
  EXPECT_EQ(run("commentPrinterPrint", u"Ευχαριστούμε", 1), 0);
  EXPECT_EQ(ask(u"9/"), "5.00/0.66/0.00/0.00/0.00/1/5.66/");
  EXPECT_EQ(run("printerStatusRead"), 0);
  EXPECT_TRUE(status()->isTransactionOpen);
  EXPECT_EQ(pay(1, 10), 0);
  expectPaper(
      {"Καφες-γαλα", " 5,00 ", "Νερο", " 0,99 ", "Νερο", " -0,33 ", "Ευχαριστούμε", " 5,66\n", " 10,00\n", " 4,34\n"});
  EXPECT_EQ(sell(u"A", 1, 1), 0);
  EXPECT_EQ(ask(u"9/"), "1.00/0.00/0.00/0.00/0.00/2/1.00/") << "the first receipt was closed";
}

TEST_P(Till, NothingIsLostOrBookedTwice) {
  // A serial exchange is repeated after ten seconds, so only two of the mishaps that lead to that are tried there.
  std::vector<std::pair<std::string, Short>> mishaps = {
      {"lost", 0},  {"half", 0},       {"late 800", 0},  {"noise-within 0708", 0},
      {"short", 0}, {"paper-end", 25}, {"code 116", 116}};
  if (isNetwork) mishaps.insert(mishaps.end(), {{"nak", -207}, {"split 25", 0}, {"duplicate 40", 0}});
  // The ACK of an ENQ has gone before the register falls silent.
  if (isNetwork && !acknowledgesEnq) mishaps.insert(mishaps.end(), {{"silence", 0}, {"4 lost", -3}});
  for (const auto& [mishap, result] : mishaps) {
    SCOPED_TRACE(mishap);
    start({"on 3/S " + mishap});
    EXPECT_EQ(sell(u"A", 1, 2.5), result) << toUtf8(Exresult);
    const bool isBooked = result == 0 || result == -3;
    EXPECT_EQ(sell(u"B", 1, 10), 0);
    EXPECT_EQ(ask(u"9/"), isBooked ? "12.50/0.00/0.00/0.00/0.00/1/12.50/" : "10.00/0.00/0.00/0.00/0.00/1/10.00/");
    EXPECT_EQ(run("DisConnect_", fromUtf8(port)), 1);
  }
}

TEST_P(Till, APortThatIsTakenOrMissingAnswers100) {
  if (isNetwork) GTEST_SKIP() << "a datagram endpoint can be shared";
  start();
  EXPECT_EQ(run("DisConnect_", fromUtf8(port)), 1);
  auto& serial = platform::hostPlatform().serial;
  const auto other = serial.open(fromUtf8(port)).value_or(-1);
  ASSERT_GT(other, 0);
  EXPECT_EQ(run("Connect_", fromUtf8(port)), 100);
  EXPECT_TRUE(serial.close(other));
}

}  // namespace
}  // namespace mirvane::test
