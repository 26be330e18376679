#include "records/cls_accumulator.h"
#include "records/cls_daily_acc.h"
#include "records/cls_trans_total.h"
#include "tests/end_to_end/journal_folders.h"
#include "tests/end_to_end/till.h"
#include "text/code_page.h"

namespace mirvane::test {
namespace {

using Cents = std::int64_t;

Cents rounded(Cents product, Cents divisor) { return (product + divisor / 2) / divisor; }
double euro(Cents cents) { return static_cast<double>(cents) / 100; }

struct Line {
  std::size_t vat;
  int department, category;
  Cents thousandths, price;

  Cents amount() const { return rounded(thousandths * price, 1000); }
};

class Day : public Till {
 protected:
  static constexpr double kRates[] = {24, 12.5, 6, 36, 0};

  // A line on the register and in the books of the open receipt.
  void enter(const char* member, const Line& line, int sign = 1) {
    till->facade().call(member, u"Είδος", static_cast<double>(line.thousandths) / 1000, euro(line.price),
                        kRates[line.vat], line.department, Result, Exresult, till->SupressError_, u"σχόλιο",
                        line.category);
    EXPECT_EQ(Result, 0) << member << " " << toUtf8(Exresult);
    book(line, sign * line.amount(), 100 * sign);
  }
  void adjust(bool onLastItem, const char* member, double value, const Line& line, Cents amount) {
    const ObjectPtr adjustment = std::get<ObjectPtr>(till->read("adjustment", onLastItem));
    EXPECT_TRUE(till->callOn(*adjustment, member, u"Προσαρμογή", value)) << member << " " << toUtf8(Exresult);
    open[amount < 0 ? "amtDiscount" : "amtMarkUP"] += std::abs(amount);
    // A subtotal's adjustment counts for no department and no category.
    book(onLastItem ? line : Line{line.vat, 0, 0, 0, 0}, amount, 0);
  }
  void book(const Line& line, Cents amount, int count) {
    open[std::string("Vat") + "ABCDE"[line.vat]] += amount;
    open["VatSum"] += amount;
    const int groups[] = {line.department, line.category};
    for (std::size_t i = 0; i < 2; ++i) {
      open[kGroups[i] + std::to_string(groups[i])] += amount;
      open[kGroups[i] + std::to_string(groups[i]) + " count"] += count;
    }
  }

  // The n-th receipt of the day: between them, every kind of line and every kind of payment.
  void ring(int n) {
    open.clear();
    const Cents quantities[] = {1000, 2000, 500, 1235, 3000};
    const auto vat = static_cast<std::size_t>(n % 5);
    const Line first{vat, n % 5 + 1, n % 4 + 1, quantities[vat], 95 + 37 * n};
    const Line second{n % 3 == 0 ? vat : (vat + 1) % 5, (n + 2) % 5 + 1, (n + 1) % 4 + 1, 1000, 250};
    const bool isCancelled = n % 13 == 6;
    enter("ItemSale", first);
    enter("ItemSale", second);
    if (!isCancelled) vary(n, second);
    if (n % 7 == 3) succeed("commentPrinterPrint", u"Καλημέρα / σας", 1);

    const auto record = std::make_shared<clsTransTotal>();
    succeed("transactionTotals", *record);
    EXPECT_EQ(record->VatA, euro(open["VatA"])) << n;
    EXPECT_EQ(record->VatE, euro(open["VatE"])) << n;
    EXPECT_EQ(record->receiptTotalAmt, euro(open["VatSum"])) << n;
    EXPECT_EQ(record->receiptNumber, n) << n;
    if (isCancelled) {
      succeed("VoidReceipt");
      books["amtCancel"] += open["VatSum"];
      return;
    }
    tender(n);
    open["LegalReceiptCount"] = 100;
    for (const auto& [name, sum] : open) books[name] += sum;
  }
  void vary(int n, const Line& last) {
    if (n % 5 == 2) adjust(true, "percentDiscount", 10, last, -rounded(last.amount() * 10, 100));
    if (n % 5 == 3) adjust(true, "amountMarkUp", 0.35, last, 35);
    // On receipts of a single VAT category, so that the books need not share.
    if (n % 6 == 0) {
      adjust(false, "amountDiscount", 0.37, last, -37);
    } else if (n % 3 == 0) {
      adjust(false, "percentMarkUP", 5, last, rounded(open["VatSum"] * 5, 100));
    } else if (n % 4 == 0) {
      enter("ItemVoid", last, -1);
      open["amtVoid"] += last.amount();
    } else if (n % 4 == 1) {
      const Line returned{last.vat, last.department, last.category, 1000, 50};
      enter("ItemRefund", returned, -1);
      open["amtRefund"] += returned.amount();
    }
  }
  void tender(int n) {
    Cents rest = open["VatSum"];
    if (n % 8 == 1) {
      EXPECT_EQ(pay(1, 1), 0);
      open["amtPaymentType1"] += 100;
      rest -= 100;
    }
    // Cash with change; cards, of which there are two kinds, and cheques to the cent.
    const auto kind = static_cast<Short>(n % 4 + 1);
    EXPECT_EQ(pay(kind, euro(kind == 1 ? rest + 480 : rest)), 0) << toUtf8(Exresult);
    open["amtPaymentType" + std::to_string(kind == 4 ? 2 : kind)] += rest;
  }

  void expectTotals() {
    const auto day = std::make_shared<clsDailyAcc>();
    ASSERT_EQ(run("getDailyTotals", *day), 0);
    for (const char* name : {"VatA", "VatB", "VatC", "VatD", "VatE", "VatSum", "LegalReceiptCount",
                             "illLegalReceiptCount", "amtVoid", "amtRefund", "amtCancel", "amtPaymentType1",
                             "amtPaymentType2", "amtPaymentType3", "amtDiscount", "amtMarkUP"}) {
      EXPECT_EQ(convertTo<double>(day->call(name)), euro(books[name])) << name;
    }
    for (int i = 0; i < 10; ++i) {
      const std::string name = kGroups[i % 2] + std::to_string(i / 2 + 1);
      const auto group = std::make_shared<clsAccumulator>();
      group->Id = static_cast<Short>(i / 2 + 1);
      succeed(i % 2 == 0 ? "getSalesPerDepartment" : "getSalesPerCategory", *group);
      EXPECT_EQ(group->Amount, euro(books[name])) << name;
      EXPECT_EQ(group->Count, euro(books[name + " count"])) << name;
    }
  }

  static inline const std::string kGroups[] = {"department ", "category "};

  JournalFolders folders;
  // The shop's own, in hundredths, under the names of the register's totals that are held against them.
  std::map<std::string, Cents> books, open;
};

INSTANTIATE_TEST_SUITE_P(Over, Day, kLines, lineName);

TEST_P(Day, FromTheSettingsToTheNextMorning) {
  start({}, {"--journal", folders.device});
  succeed("setHeader", u"ΚΑΦΕ/ΜΠΑΡ", 3, u"Δεύτερη", 1, u"Τρίτη", 1, u"", 1, u"Πέμπτη", 1);
  succeed("setFooter", u"Στο καλό", 1, u"", 1, u"", 1);
  succeed("setVatCategories", kRates[0], kRates[1], kRates[2], kRates[3], kRates[4]);
  succeed("setCategory", 2, u"Ζεστά");

  for (int n = 1; n <= 44; ++n) {
    if (n == 20) succeed("setTempFooter", u"Μόνο σήμερα", u"", u"");
    ring(n);
    if (n % 15 == 0) succeed("executeCashOut", 5.0, u"Προμηθευτής");
    if (n % 10 == 0) succeed("executeCashIn", 20.0, u"Κέρματα");
    books["illLegalReceiptCount"] += Cents{100} * ((n % 15 == 0) + (n % 10 == 0));
    if (n % 11 == 0) expectTotals();
  }
  succeed("issueXReport");
  expectTotals();
  EXPECT_TRUE(status()->isDayOpen);

  succeed("issueZReport");
  folders.expectSaved("0001");
  EXPECT_FALSE(status()->isDayOpen);
  books.clear();
  expectTotals();
  succeed("issueZReprintReport");

  // The next day has its own numbers and its own journal.
  ring(1);
  succeed("issueZReport");
  folders.expectSaved("0001");
  folders.expectSaved("0002");
  expectPaper({"Κ Α Φ Ε - Μ Π Α Ρ", "Δεύτερη", "ΑΠΟΔΕΙΞΗ 0001", "Ζ 0001", "Στο καλο", "ΑΚΥΡΩΘΗΚΕ", "ΚΑΤΑΘΕΣΗ",
               "Κερματα", " 20,00\n", "ΑΝΑΛΗΨΗ", "Προμηθευτης", " 5,00\n", "Μονο σημερα", "Στο καλο", "ΑΠΟΔΕΙΞΗ 0044",
               "ΑΠΟΔΕΙΞΗ 0001", "Ζ 0002"});
}

}  // namespace
}  // namespace mirvane::test
