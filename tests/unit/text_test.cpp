#include <cmath>
#include <random>

#include "interface/numbers.h"
#include "interface/vat_shares.h"
#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

class Utilities : public ComponentTest {};

TEST_F(Utilities, CleanTextTakesAccentsAndSlashesAway) {
  const std::pair<const char*, const char*> cases[] = {
      {"Καφές/Τσάι", "Καφες-Τσαι"}, {"άΆέΈήΉίΊόΌύΎώΏ", "αΑεΕηΗιΙοΟύΥωΩ"},
      {"ϊϋΐΰΪΫ", "ϊϋΐΰΪΫ"},         {"//", "--"},
      {"plain é ς", "plain é ς"},   {"", ""}};
  for (const auto& [given, clean] : cases) {
    EXPECT_EQ(toUtf8(cleanText(fromUtf8(given))), clean);
    Text text = fromUtf8(given);
    EXPECT_EQ(stripAccents(text), text);
    EXPECT_EQ(std::ranges::count(text, u'/'), std::ranges::count(fromUtf8(given), u'/'));
  }
}

TEST_F(Utilities, AmountsAndQuantities) {
  const std::pair<double, const char*> amounts[] = {{0, "0.00"},
                                                    {1234.5, "1234.50"},
                                                    {0.125, "0.13"},
                                                    {-0.125, "-0.13"},
                                                    {2.675, "2.68"},
                                                    {1.005, "1.01"},
                                                    {-2.675, "-2.68"},
                                                    {0.005, "0.01"},
                                                    {-0.005, "-0.01"},
                                                    {-0.001, "0.00"},
                                                    {-0.0, "0.00"},
                                                    {0.004999, "0.00"},
                                                    {1e-7, "0.00"},
                                                    {1e-300, "0.00"},
                                                    {999999.995, "1000000.00"},
                                                    {0.995, "1.00"},
                                                    {0.1 + 0.2, "0.30"},
                                                    {9.995, "10.00"},
                                                    {1e15, "1000000000000000.00"},
                                                    {4.35 * 100, "435.00"},
                                                    {123456789012.345, "123456789012.35"}};
  for (const auto& [amount, text] : amounts) EXPECT_EQ(toUtf8(formatAmount(amount)), text) << amount;
  const std::pair<double, const char*> quantities[] = {{2, "2.000"},       {0.0005, "0.001"},  {1.2345, "1.235"},
                                                       {1.23449, "1.234"}, {-0.0004, "0.000"}, {-1.0005, "-1.001"}};
  for (const auto& [quantity, text] : quantities) EXPECT_EQ(toUtf8(formatQuantity(quantity)), text) << quantity;
  EXPECT_EQ(toUtf8(formatAmount(1e300)), "1" + std::string(300, '0') + ".00");
  for (const double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    EXPECT_EQ(errorOf([&] { formatAmount(bad); }), kOverflow);
    EXPECT_EQ(errorOf([&] { formatQuantity(bad); }), kOverflow);
  }
}

TEST_F(Utilities, WholeNumbersFromTexts) {
  const std::pair<const char*, Short> cases[] = {
      {"2.5", 2}, {"3.5", 4},   {"-2.5", -2},     {"12", 12},         {" 7 ", 7},   {"12ab", 0}, {"", 0},   {"abc", 0},
      {"2,5", 2}, {"1e2", 100}, {"32767", 32767}, {"-32768", -32768}, {"32768", 0}, {"1e99", 0}, {"0.5", 0}};
  for (const auto& [text, number] : cases) EXPECT_EQ(toInt(fromUtf8(text)), number) << text;
}

TEST_F(Utilities, SumsRoundHalfToEven) {
  EXPECT_EQ(sumRounded({}), 0);
  const double numbers[] = {0.125, 0.375, -0.125, 2.5, 1.004999};
  EXPECT_NEAR(sumRounded(numbers), 0.12 + 0.38 - 0.12 + 2.5 + 1.0, 1e-12);
}

TEST_F(Utilities, ReplyFields) {
  struct Case {
    const char16_t* reply;
    std::vector<Text> fields;
  };
  const std::vector<Text> kept = {u"kept"};
  const Case cases[] = {
      {u"a/b/c/d/e", {u"d"}}, {u"a/b/c/d/e/", {u"d", u"e"}},    {u"a/b/c/d", kept}, {u"", kept}, {u"////", {u""}},
      {u"a/b/c/d/", {u"d"}},  {u"a/b/c//e//", {u"", u"e", u""}}};
  for (const auto& [reply, fields] : cases) {
    replyFields() = kept;
    splitReply(reply);
    EXPECT_EQ(replyFields(), fields) << toUtf8(reply);
  }
}

TEST_F(Utilities, TimeOutsCountSinglePrecisionSecondsOfTheDay) {
  struct Case {
    double now;
    float start, limit;
    bool timedOut;
  };
  const Case cases[] = {{110, 100, 10, false},         {110.01, 100, 10, true}, {109.9, 100, 10, false},
                        {80010.003, 80000, 10, false},  // single precision knows no such fraction any more
                        {80010.02, 80000, 10, true},   {5, 86390, 10, false},   {86399, 86390, 5, true}};
  for (const auto& [now, start, limit, timedOut] : cases) {
    clock.startOfDay = now;
    EXPECT_EQ(isTimedOut(start, limit), timedOut) << now;
  }
}

TEST_F(Utilities, SharesOfAnAdjustmentAddUpToTheCent) {
  std::mt19937 random(20240325);
  const auto cents = [](double amount) { return std::llround(amount * 100); };
  for (int i = 0; i < 20000; ++i) {
    VatAmounts totals{}, shares{};
    double total = 0;
    for (double& amount : totals) {
      amount = random() % 3 == 0 ? 0 : static_cast<double>(random() % (i % 2 == 0 ? 12 : 1000000)) / 100;
      total += amount;
    }
    if (random() % 4 == 0) totals[random() % 5] = totals[random() % 5];
    total = totals[0] + totals[1] + totals[2] + totals[3] + totals[4];
    const double factor = (static_cast<double>(random() % 2001) - 1000) / 1000;
    double adjustment = total;
    const Short largest = apportionByVat(totals, shares, adjustment, factor);
    SCOPED_TRACE(testing::PrintToString(totals) + " * " + std::to_string(factor));
    EXPECT_NEAR(adjustment, std::fabs(total * factor), 0.005 + 1e-9);
    long long sum = 0;
    for (std::size_t k = 0; k < 5; ++k) {
      EXPECT_GE(shares[k], 0);
      EXPECT_NEAR(shares[k] * 100, static_cast<double>(cents(shares[k])), 1e-6);
      sum += cents(shares[k]);
    }
    EXPECT_EQ(sum, cents(adjustment));
    ASSERT_TRUE(largest >= 0 && largest <= 4);
    const auto at = static_cast<std::size_t>(largest);
    for (std::size_t k = 0; k < 5; ++k) {
      EXPECT_NEAR(shares[k], std::fabs(totals[k] * factor), k == at ? 0.0301 : 0.0151);
      EXPECT_LE(std::fabs(totals[k] * factor), std::fabs(totals[at] * factor) + 0.01) << "another share is larger";
    }
    if (testing::Test::HasFailure()) return;
  }
}

TEST_F(Utilities, TheRemainderGoesToTheLargestShare) {
  struct Case {
    VatAmounts totals;
    double factor, adjustment;
    VatAmounts shares;
    Short largest;
  };
  const Case cases[] = {
      {{10, 20, 30, 0, 0}, -0.1, 6, {1, 2, 3, 0, 0}, 2},
      {{0.05, 0.05, 0.05, 0, 0}, 0.1, 0.02, {0.01, 0.01, 0, 0, 0}, 2},  // 3 * 0.01 rounded up, one too many
      {{0.14, 0.14, 0.14, 0.14, 0.14}, 0.1, 0.07, {0.01, 0.01, 0.01, 0.01, 0.03}, 4},
      {{1, 1, 0, 0, 0}, 0.333, 0.67, {0.33, 0.34, 0, 0, 0}, 1},  // equal shares: the later one
      {{5, 1, 1, 1, 1}, 0.004, 0.04, {0.04, 0, 0, 0, 0}, 0},
      {{0, 0, 0, 0, 0}, 0.5, 0, {0, 0, 0, 0, 0}, 4},
  };
  for (const auto& [totals, factor, adjustment, expected, largest] : cases) {
    VatAmounts shares{};
    double total = totals[0] + totals[1] + totals[2] + totals[3] + totals[4];
    EXPECT_EQ(apportionByVat(totals, shares, total, factor), largest) << testing::PrintToString(totals);
    EXPECT_NEAR(total, adjustment, 1e-9) << testing::PrintToString(totals);
    for (std::size_t k = 0; k < 5; ++k) EXPECT_NEAR(shares[k], expected[k], 1e-9) << testing::PrintToString(totals);
  }
  VatAmounts totals{std::nan(""), 1, 1, 1, 1}, shares{};
  double total = 4;
  EXPECT_EQ(errorOf([&] { apportionByVat(totals, shares, total, 0.1); }), kOverflow);
}

}  // namespace
}  // namespace mirvane::test
