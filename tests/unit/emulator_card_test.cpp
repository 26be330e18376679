#include <gtest/gtest.h>

#include "emulator/device.h"
#include "tests/fakes/fake_machine.h"
#include "text/code_page.h"

namespace mirvane::emulator {
namespace {

const std::string kCardSale = "3/S//A///1.000/10.00/1/24.00/1/", kCard = "5/2///4.00/1/1/";

class EmulatorCard : public testing::Test {
 protected:
  /// Commands between "|", each with the code that it is answered with, and "+" with seconds to pass.
  void run(std::string rows) {
    for (rows += "|"; !rows.empty(); rows.erase(0, rows.find('|') + 1)) {
      const std::string row = rows.substr(0, rows.find('|'));
      if (row[0] == '+') {
        clock.advance(std::stod(row));
        continue;
      }
      EXPECT_EQ(device.execute(row.substr(0, row.size() - 3)).substr(0, 2), row.substr(row.size() - 2)) << row;
    }
  }

  test::FakeClock clock;
  std::string paper;
  Device device{[this](TextView line) { paper += toUtf8(line) + "\n"; }, systemTime, [this] { return clock.now; }};
};

TEST_F(EmulatorCard, AnApprovedPaymentIsBookedOnce) {
  run("5/2///4.00/1/1/ 40|" + kCardSale + " 00|5/1///4.00/1/1/ 28|5/2///4.00/-1/1/ 05|5/2///10.01/1/1/ 70|" +
      "5/2///4.00/2/1/ 9F|" + kCard + " 9E|?/ 9E|" + kCard + " 9E|" + kCardSale + " 9E|O/2/ 9E|v/ 00|+1.9|9/ 9E|+0.1");
  EXPECT_EQ(device.execute("5/99/1/1/1/"), "00/00/0E/6.00/0.00/4.00/");
  run("?/ 00|?/ 00|O/1/ 45|O/2/ 59|" + kCard + " 9E|+2|?/ 00|" + kCard + " 70|5/1///0.00/// 00|O/1/ 00");
  EXPECT_EQ(device.fiscal().day.payments, (std::array<Cents, 3>{200, 800, 0}));
  EXPECT_LT(paper.find("EFTPOS 01 ΤΕΡΜΑΤΙΚΟ"), paper.find("ΑΡ. 000002"));
  EXPECT_NE(paper.find("ΑΡ. 000002"), std::string::npos) << paper;
}

TEST_F(EmulatorCard, ARefusedPaymentIsToldOnceAndLeavesTheReceiptOpen) {
  device.cards().options = {3, {Code::kNoChange, Code::kCardFailed}, Code::kCardNotRead};
  run(kCardSale + " 00");
  const std::string before = kCard + " 9E|+3|9/ 00|?/ ";
  for (std::string told : {"70", "9C", "9D", "9D"}) run(told.insert(0, before).append("|?/ 00|O/1/ 5B"));
  run(kCard + " 9E|+3|5/1///10.00/// 00|?/ 00|O/1/ 00");
  EXPECT_EQ(paper.find("EFTPOS"), std::string::npos) << paper;
}

TEST_F(EmulatorCard, TerminalRecordsAreCheckedAndKept) {
  const std::string rest = "/KASSA/2/3/4/5/6/ACQ/T/S/1/", good = "/4000/60/10.0.0.2" + rest, read = "E/0/2////////";
  run("E/0/0//////// 05|E/0/21//////// 05|" + read + " 9F|E/0/1/x/////// 02|E/0/1/ 01|E/3/1//////// 05|E/1/21/1" +
      good + " 05|E/1/2/256" + good + " 05|E/1/2/1/0/60/10.0.0.2" + rest + " 05|E/1/2/1/65536/60/10.0.0.2" + rest +
      " 05|E/1/2/1/1/-1/10.0.0.2" + rest + " 05|E/1/2/1/1/60/10.0.0.2/A/2/3/4/5/32768////1/ 05|E/4/2/1" + good + " 9F");
  for (std::string ip : {"", "10.0.0", "10.0.0.2.", "10.0.0.256", "10.0.0.02", "10.0.0.-2", "till"}) {
    run(ip.insert(0, "E/1/2/1/4000/60/").append(rest).append(" 7A"));
  }
  run("E/1/2/1/4000/60/224.0.0.2" + rest + " A0|" + read + " 9F|E/1/2/7" + good + " 00");
  EXPECT_EQ(device.execute(read), "00/00/00/1/10.0.0.2/4000/KASSA/2/60/3/4/5/6/73100002/6/ACQ/T/S/1/");
  run("E/2/2/1/4000/60/10.0.0.2/A/1/0/ 00|E/2/2/0/4000/60/10.0.0.2/A/1/0/ 9F|E/2/2/1/4001/60/10.0.0.2/A/1/0/ 8A|"
      "E/2/3/1/4000/60/10.0.0.2/A/1/0/ 9F|E/1/2/6" +
      good + " 00|E/2/2/1/4000/60/10.0.0.2/A/1/0/ 9F|" + kCardSale + " 00|5/2///4.00/2/1/ 9F|E/4/2/1" + good +
      " 41|5/1///0.00/// 00|O/1/ 00|E/4/2/1" + good + " 00|" + read + " 9F");
}

}  // namespace
}  // namespace mirvane::emulator
