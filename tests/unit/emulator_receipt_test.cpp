#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "emulator/device.h"
#include "emulator/money.h"

namespace mirvane::emulator {
namespace {

std::vector<std::string> split(const std::string& reply) {
  std::vector<std::string> fields;
  for (std::size_t begin = 0; begin < reply.size();) {
    const std::size_t end = reply.find('/', begin);
    fields.push_back(reply.substr(begin, end - begin));
    begin = end + 1;
  }
  return fields;
}

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

struct Case {
  std::vector<std::string> before;
  std::string command, reply;
};

TEST(EmulatorReceipt, AnswersWithItsCodes) {
  const std::string sale = "3/S//A///1.000/2.00/1/24.00/1/";
  const std::string bread = "3/S//B///1.000/1.00/1/13.00/1/";
  const std::string tooLong(31, 'x');
  const Case cases[] = {
      {{}, "!/", "06/00/00/"},
      {{}, "F", "06/00/00/"},
      {{}, "F/3", "01/00/00/"},
      {{}, "F//", "03/00/00/"},
      {{}, "F/100/", "02/00/00/"},
      {{}, "F/0/", "05/00/00/"},
      {{}, "P/a\tb/1/", "05/00/00/"},
      {{}, "P/a/5/", "05/00/00/"},
      {{}, "p/3/", "05/00/00/"},
      {{}, "2/10/0/0/1/" + tooLong + "/", "02/00/00/"},
      // Items.
      {{}, "3/S//" + tooLong + "///1.000/2.00/1/24.00/1/", "02/00/00/"},
      {{}, "3/X//A///1.000/2.00/1/24.00/1/", "25/00/00/"},
      {{}, "3/S// ///1.000/2.00/1/24.00/1/", "6B/00/00/"},
      {{}, "3/S//A///0.000/2.00/1/24.00/1/", "67/00/00/"},
      {{}, "3/S//A///1.0001/2.00/1/24.00/1/", "05/00/00/"},
      {{}, "3/S//A///1.000/2,00/1/24.00/1/", "05/00/00/"},
      {{}, "3/S//A///1.000/99999999.99/1/24.00/1/", "05/00/00/"},
      {{}, "3/S//A///1.000/-2.00/1/24.00/1/", "60/00/00/"},
      {{}, "3/S//A///1.000/0.00/1/24.00/1/", "4F/00/00/"},
      {{}, "3/S//A///1.000/2.00/41/24.00/1/", "55/00/00/"},
      {{}, "3/S//A///1.000/2.00/1/23.00/1/", "27/00/00/"},
      {{}, "3/S//A///1.000/2.00/1/24.00/0/", "54/00/00/"},
      {{}, "3/S//A///1000.000/1000.00/1/24.00/1/", "74/00/00/"},
      {{}, "3/V//A///1.000/2.00/1/24.00/1/", "40/00/00/"},
      {{}, "3/R//A///1.000/2.00/1/24.00/1/", "6D/00/00/"},
      {{sale, bread}, "3/V//A///1.000/1.01/1/13.00/1/", "7C/00/06/"},
      {{sale, bread}, "3/R//A///1.000/1.01/1/13.00/1/", "7B/00/06/"},
      {{sale, "5/1///1.00///"}, sale, "45/00/0E/"},
      {{"6/0/5.00//"}, sale, "43/00/06/"},
      {{"6/1/5.00//"}, sale, "44/00/06/"},
      // Payment.
      {{}, "5/1///1.00///", "40/00/00/"},
      {{sale}, "5/5///1.00///", "28/00/06/"},
      {{sale}, "5/1///-1.00///", "05/00/06/"},
      {{sale}, "5/2///2.01///", "70/00/06/"},
      {{sale}, "5/2///0.00///", "71/00/06/"},
      {{sale, "3/V//A///1.000/2.00/1/24.00/1/"}, "5/1///1.00///", "A5/00/06/"},
      {{sale, "5/1///0.00///"}, "5/1///1.00///", "4B/00/0E/"},
      {{sale, "5/1///0.00///"}, "5/99/1/1/1/", "00/00/0E/0.00/0.00/2.00/"},
      // Closing and cancelling.
      {{}, "O/1/", "40/00/00/"},
      {{}, "O/3/", "05/00/00/"},
      {{sale}, "O/1/", "5B/00/06/"},
      {{sale, "3/V//A///1.000/2.00/1/24.00/1/"}, "O/1/", "A5/00/06/"},
      {{sale, "5/1///1.00///"}, "O/1/", "45/00/0E/"},
      {{sale, "5/1///1.00///"}, "O/2/", "00/00/02/"},
      {{sale, "5/2///1.00///"}, "O/2/", "59/00/0E/"},
      {{sale, "5/1///2.00///"}, "O/2/", "4B/00/0E/"},
      // Cash documents.
      {{sale}, "6/0/5.00//", "41/00/06/"},
      {{"6/0/5.00//"}, "6/1/5.00//", "43/00/06/"},
      {{"6/0/5.00//"}, "O/2/", "43/00/06/"},
      {{"6/1/5.00//"}, "O/1/", "00/00/02/"},
      {{}, "6/0/0.00//", "71/00/00/"},
      // Around them.
      {{sale}, "p/2/1/", "41/00/06/"},
      {{}, "p/2/2/", "05/00/00/"},
      {{sale, "O/2/"}, "9/", "00/00/02/0.00/0.00/0.00/0.00/0.00/1/0.00/"},
  };
  for (const Case& c : cases) {
    Device device;
    for (const std::string& command : c.before) ASSERT_EQ(device.execute(command).substr(0, 2), "00") << command;
    EXPECT_EQ(device.execute(c.command), c.reply) << c.command << " after " << c.before.size() << " commands";
  }
}

TEST(EmulatorReceipt, APrinterThatCannotPrintAndAFullDayBookNothing) {
  Device device;
  const std::string sale = "3/S//A///1.000/2.00/1/24.00/1/";
  device.fiscal().limits.day = 399;
  EXPECT_EQ(device.execute(sale, kPrinterPaperEnd), "19/04/00/");
  EXPECT_EQ(device.execute(sale, kPrinterOffline), "1A/10/00/");
  EXPECT_EQ(device.execute(sale, kPrinterFlashNearFull), "00/20/06/");
  EXPECT_EQ(device.execute(sale), "75/00/06/");
  EXPECT_EQ(device.execute("5/99/1/1/1/", kPrinterPaperEnd), "00/04/06/2.00/0.00/0.00/");
}

TEST(EmulatorReceipt, PaperShowsWhatWasSold) {
  Text paper;
  Device device(
      [&paper](TextView line) {
        EXPECT_LE(line.size(), Paper::kColumns);
        paper.append(line).append(u"\n");
      },
      [] { return platform::LocalTime{2026, 3, 7, 9, 5, 1}; });
  for (const TextView command : {u"3/S//ΚΑΦΕΣ/ΣΚΕΤΟΣ//2.500/1.50/1/24.00/1/", u"3/V//ΚΑΦΕΣ///1.000/0.75/1/24.00/1/",
                                 u"P/ΜΕΓΑΛΑ/4/", u"5/1/ΜΕΤΡΗΤΟΙΣ//5.00///", u"O/1/", u"p/2/0/"}) {
    ASSERT_EQ(device.execute(toCodePage(command)).substr(0, 2), "00");
  }
  for (const TextView line :
       {u"ΝΟΜΙΜΗ ΑΠΟΔΕΙΞΗ - ΕΝΑΡΞΗ\n", u"  2,500 x 1,50\nΚΑΦΕΣ                                     3,75 Α\n  ΣΚΕΤΟΣ\n",
        u"ΚΑΦΕΣ                                    -0,75 Α\n", u"\nΜ Ε Γ Α Λ Α\n",
        u"ΣΥΝΟΛΟ                                    3,00\nΜΕΤΡΗΤΟΙΣ                                 5,00\n",
        u"ΡΕΣΤΑ                                     2,00\n", u"ΚΑΘΑΡΗ ΑΞΙΑ 2,42  ΦΟΡΟΣ 0,58\n", u"07-03-2026 09:05:01",
        u"8<- - "}) {
    EXPECT_NE(paper.find(line), Text::npos) << toUtf8(line) << "is missing in\n" << toUtf8(paper);
  }
}

}  // namespace
}  // namespace mirvane::emulator
