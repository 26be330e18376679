#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "emulator/device.h"
#include "emulator/money.h"
#include "tests/fakes/strings.h"

namespace mirvane::emulator {
namespace {

std::string item(char kind, Thousandths quantity, Cents price, const std::string& rate) {
  return std::string("3/") + kind + "//ITEM///" + formatFixed(quantity, 3) + "/" + formatCents(price) + "/1/" + rate +
         "/1/";
}

// What the device must answer and add up to, worked out in another way than the device's.
struct Book {
  VatSums sums{};
  bool isOpen = false;

  Cents total() const { return sums[0] + sums[1] + sums[2] + sums[3] + sums[4]; }
  std::string expectedCode(char kind, std::size_t vat, Cents amount) const {
    if (kind == 'V' && !isOpen) return "40";
    if (amount == 0) return "4F";
    if (kind == 'V' && sums[vat] < amount) return "7C";
    if (kind == 'R' && total() < amount) return "6D";
    return kind == 'R' && sums[vat] < amount ? "7B" : "00";
  }
};

TEST(EmulatorReceipt, TotalsOfRandomReceiptsAreRightToTheCent) {
  const std::array<std::string, kVatCategories> rates{"24.00", "13.00", "6.00", "36.00", "0.00"};
  const std::array<int, kVatCategories> percents{24, 13, 6, 36, 0};
  std::mt19937 random(20251121);
  const auto pick = [&random](int from, int to) { return std::uniform_int_distribution<int>(from, to)(random); };
  Device device;
  VatSums dayGross{}, dayVat{};
  Cents cash = 0, card = 0;
  for (int number = 1; number <= 150; ++number) {
    Book book;
    for (int lines = pick(1, 25); lines > 0 || book.total() == 0; --lines) {
      const auto vat = static_cast<std::size_t>(pick(0, 4));
      const char kind = "SSSSVR"[pick(0, 5)];
      const Thousandths quantity = pick(0, 2) == 0 ? pick(1, 9999) : 1000 * pick(1, 9);
      const Cents price = pick(1, 20000);
      const Cents amount = std::llround(static_cast<long double>(quantity * price) / 1000);
      const std::string expected = book.expectedCode(kind, vat, amount);
      ASSERT_EQ(device.execute(item(kind, quantity, price, rates[vat])).substr(0, 2), expected) << "receipt " << number;
      if (expected != "00") continue;
      book.isOpen = true;
      book.sums[vat] += kind == 'S' ? amount : -amount;
    }
    const auto totals = split(device.execute("9/"));
    for (std::size_t i = 0; i < kVatCategories; ++i) EXPECT_EQ(totals[3 + i], formatCents(book.sums[i]));
    EXPECT_EQ(totals[8], std::to_string(number));
    EXPECT_EQ(totals[9], formatCents(book.total()));

    Cents rest = book.total();
    while (rest > 0) {
      const bool isCard = pick(0, 1) == 1;
      const Cents tendered = pick(1, static_cast<int>(rest) + (isCard ? 0 : 500));
      ASSERT_EQ(device.execute(std::string("5/") + (isCard ? "2" : "1") + "///" + formatCents(tendered) + "///"),
                "00/00/0E/");
      const Cents booked = std::min(tendered, rest);
      (isCard ? card : cash) += booked;
      rest -= booked;
      const auto remaining = split(device.execute("5/99/1/1/1/"));
      EXPECT_EQ(remaining[3], formatCents(rest));
      EXPECT_EQ(remaining[4], formatCents(tendered - booked));
    }
    ASSERT_EQ(device.execute("O/1/"), "00/00/02/");
    for (std::size_t i = 0; i < kVatCategories; ++i) {
      dayGross[i] += book.sums[i];
      dayVat[i] += std::llround(static_cast<long double>(book.sums[i]) * percents[i] / (100 + percents[i]));
    }
  }
  EXPECT_EQ(device.fiscal().day.gross, dayGross);
  EXPECT_EQ(device.fiscal().day.vat, dayVat);
  EXPECT_EQ(device.fiscal().day.payments, (std::array<Cents, 3>{cash, card, 0}));
  EXPECT_EQ(device.fiscal().departments[0].amount, sumOf(dayGross));
}

const std::string kBreadSale = "3/S//A///1.000/2.00/1/24.00/1/", kVoid = "3/V//A///1.000/2.00/1/24.00/1/",
                  kBread = "3/S//B///1.000/1.00/1/13.00/1/";

TEST(EmulatorReceipt, AnswersWithItsCodes) {
  // What came before, the status then, and commands, each with the code that it is answered with.
  const std::tuple<std::vector<std::string>, std::string, std::string> states[] = {
      {{},
       "/00/00/",
       "!/ 06|F 06|F/3 01|F// 03|F/100/ 02|F/0/ 05|P/a\tb/1/ 05|P/a/5/ 05|p/3/ 05|"
       "2/10/0/0/1/xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx/ 02|"
       "3/S//xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx///1.000/2.00/1/24.00/1/ 02|3/X//A///1.000/2.00/1/24.00/1/ 25|"
       "3/S// ///1.000/2.00/1/24.00/1/ 6B|3/S//A///0.000/2.00/1/24.00/1/ 67|3/S//A///1.0001/2.00/1/24.00/1/ 05|"
       "3/S//A///1.000/2,00/1/24.00/1/ 05|3/S//A///1.000/99999999.99/1/24.00/1/ 05|"
       "3/S//A///1.000/-2.00/1/24.00/1/ 60|3/S//A///1.000/0.00/1/24.00/1/ 4F|3/S//A///1.000/2.00/41/24.00/1/ 55|"
       "3/S//A///1.000/2.00/1/23.00/1/ 27|3/S//A///1.000/2.00/1/24.00/0/ 54|3/S//A///1000.000/1000.00/1/24.00/1/ 74|"
       "3/V//A///1.000/2.00/1/24.00/1/ 40|3/R//A///1.000/2.00/1/24.00/1/ 6D|5/1///1.00/// 40|O/1/ 40|O/3/ 05|"
       "6/0/0.00// 71"},
      {{kBreadSale, kBread},
       "/00/06/",
       "3/V//A///1.000/1.01/1/13.00/1/ 7C|3/R//A///1.000/1.01/1/13.00/1/ 7B|5/5///1.00/// 28|5/1///-1.00/// 05|"
       "5/2///3.01/// 70|5/2///0.00/// 71|O/1/ 5B|6/0/5.00// 41|p/2/1/ 41"},
      {{kBreadSale, kVoid}, "/00/06/", "5/1///1.00/// A5|O/1/ A5"},
      {{kBreadSale, "5/1///1.00///"}, "/00/0E/", kBreadSale + " 45|O/1/ 45"},
      {{kBreadSale, "5/2///1.00///"}, "/00/0E/", "O/2/ 59"},
      {{kBreadSale, "5/1///0.00///"}, "/00/0E/", "5/1///1.00/// 4B|O/2/ 4B"},
      {{"6/0/5.00//"}, "/00/06/", kBreadSale + " 43|6/1/5.00// 43|O/2/ 43"},
      {{"6/1/5.00//"}, "/00/06/", kBreadSale + " 44"}};
  for (const auto& [before, status, commands] : states) {
    for (const std::string& row : split(commands, '|')) {
      Device device;
      for (const std::string& command : before) ASSERT_EQ(device.execute(command).substr(0, 2), "00") << command;
      const std::size_t end = row.rfind(' ');
      EXPECT_EQ(device.execute(row.substr(0, end)), row.substr(end + 1) + status) << row;
    }
  }
}

TEST(EmulatorReceipt, APrinterThatCannotPrintAndAFullDayBookNothing) {
  Device device;
  device.fiscal().limits.day = 399;
  EXPECT_EQ(device.execute(kBreadSale, kPrinterPaperEnd), "19/04/00/");
  EXPECT_EQ(device.execute(kBreadSale, kPrinterOffline), "1A/10/00/");
  EXPECT_EQ(device.execute(kBreadSale, kPrinterFlashNearFull), "00/20/06/");
  EXPECT_EQ(device.execute(kBreadSale), "75/00/06/");
  EXPECT_EQ(device.execute("5/99/1/1/1/", kPrinterPaperEnd), "00/04/06/2.00/0.00/0.00/");
}

}  // namespace
}  // namespace mirvane::emulator
