#include <cmath>
#include <numeric>
#include <random>

#include "interface/numbers.h"
#include "interface/vat_shares.h"
#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

class Utilities : public ComponentTest {};

TEST_F(Utilities, CleanTextTakesAccentsAndSlashesAway) {
  const std::pair<const char*, const char*> cases[] = {
      {"Καφές/Τσάι", "Καφες-Τσαι"}, {"άΆέΈήΉίΊόΌύΎώΏ", "αΑεΕηΗιΙοΟύΥωΩ"}, {"//ϊϋΐΰΪΫ é ς", "--ϊϋΐΰΪΫ é ς"}};
  for (const auto& [given, clean] : cases) {
    EXPECT_EQ(toUtf8(cleanText(fromUtf8(given))), clean);
    Text text = fromUtf8(given);
    EXPECT_EQ(stripAccents(text), text);
    EXPECT_EQ(std::ranges::count(text, u'/'), std::ranges::count(fromUtf8(given), u'/'));
  }
}

TEST_F(Utilities, AmountsAndQuantities) {
  const std::vector<double> amounts = {0,          1234.5,    0.125,  -0.125,     2.675,           1.005,
                                       -2.675,     -0.005,    -0.001, -0.0,       0.004999,        1e-300,
                                       999999.995, 0.1 + 0.2, 1e15,   4.35 * 100, 123456789012.345};
  const char* const written =
      "0.00 1234.50 0.13 -0.13 2.68 1.01 -2.68 -0.01 0.00 0.00 0.00 0.00 1000000.00 0.30 1000000000000000.00 435.00 "
      "123456789012.35";
  std::string text;
  for (const double amount : amounts) text += (text.empty() ? "" : " ") + toUtf8(formatAmount(amount));
  EXPECT_EQ(text, written);
  text.clear();
  for (const double quantity : {2.0, 0.0005, 1.2345, 1.23449, -0.0004, -1.0005})
    text += toUtf8(formatQuantity(quantity)) + " ";
  EXPECT_EQ(text, "2.000 0.001 1.235 1.234 0.000 -1.001 ");
  EXPECT_EQ(toUtf8(formatAmount(1e300)), "1" + std::string(300, '0') + ".00");
  for (const double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    EXPECT_EQ(errorOf([&] { formatAmount(bad); }), kOverflow);
    EXPECT_EQ(errorOf([&] { formatQuantity(bad); }), kOverflow);
  }
}

TEST_F(Utilities, WholeNumbersFromTexts) {
  const std::pair<const char*, Short> cases[] = {{"2.5", 2},         {"3.5", 4},   {"-2.5", -2}, {" 7 ", 7},
                                                 {"12ab", 0},        {"", 0},      {"2,5", 2},   {"1e2", 100},
                                                 {"-32768", -32768}, {"32768", 0}, {"1e99", 0},  {"0.5", 0}};
  for (const auto& [text, number] : cases) EXPECT_EQ(toInt(fromUtf8(text)), number) << text;
}

TEST_F(Utilities, SumsRoundHalfToEven) {
  const double numbers[] = {0.125, 0.375, -0.125, 2.5, 1.004999};
  EXPECT_NEAR(sumRounded(numbers), 0.12 + 0.38 - 0.12 + 2.5 + 1.0, 1e-12);
}

TEST_F(Utilities, ReplyFields) {
  const std::vector<Text> kept = {u"kept"};
  const std::pair<const char16_t*, std::vector<Text>> cases[] = {
      {u"a/b/c/d/e", {u"d"}}, {u"a/b/c/d/e/", {u"d", u"e"}},    {u"a/b/c/d", kept}, {u"", kept}, {u"////", {u""}},
      {u"a/b/c/d/", {u"d"}},  {u"a/b/c//e//", {u"", u"e", u""}}};
  for (const auto& [reply, fields] : cases) {
    replyFields() = kept;
    splitReply(reply);
    EXPECT_EQ(replyFields(), fields) << toUtf8(reply);
  }
}

TEST_F(Utilities, TimeOutsCountSinglePrecisionSecondsOfTheDay) {
  const std::tuple<double, float, float, bool> cases[] = {
      {110, 100, 10, false},         {110.01, 100, 10, true},
      {80010.003, 80000, 10, false},  // single precision knows no such fraction any more
      {80010.02, 80000, 10, true},   {5, 86390, 10, false},
      {86399, 86390, 5, true}};
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
    for (double& amount : totals) {
      amount = random() % 3 == 0 ? 0 : static_cast<double>(random() % (i % 2 == 0 ? 12 : 1000000)) / 100;
    }
    const double total = std::accumulate(totals.begin(), totals.end(), 0.0);
    const double factor = (static_cast<double>(random() % 2001) - 1000) / 1000;
    double adjustment = total;
    const Short largest = apportionByVat(totals, shares, adjustment, factor);
    SCOPED_TRACE(testing::PrintToString(totals) + " * " + std::to_string(factor));
    EXPECT_NEAR(adjustment, std::fabs(total * factor), 0.005 + 1e-9);
    ASSERT_TRUE(largest >= 0 && largest <= 4);
    const auto at = static_cast<std::size_t>(largest);
    long long sum = 0;
    for (std::size_t k = 0; k < 5; ++k) {
      EXPECT_GE(shares[k], 0);
      EXPECT_NEAR(shares[k] * 100, static_cast<double>(cents(shares[k])), 1e-6);
      sum += cents(shares[k]);
      EXPECT_NEAR(shares[k], std::fabs(totals[k] * factor), k == at ? 0.0301 : 0.0151);
      EXPECT_LE(std::fabs(totals[k] * factor), std::fabs(totals[at] * factor) + 0.01) << "another share is larger";
    }
    EXPECT_EQ(sum, cents(adjustment));
    if (testing::Test::HasFailure()) return;
  }
}

TEST_F(Utilities, TheRemainderGoesToTheLargestShare) {
  const std::tuple<VatAmounts, double, double, VatAmounts, Short> cases[] = {
      {{10, 20, 30, 0, 0}, -0.1, 6, {1, 2, 3, 0, 0}, 2},
      {{0.05, 0.05, 0.05, 0, 0}, 0.1, 0.02, {0.01, 0.01, 0, 0, 0}, 2},  // 3 * 0.01 rounded up, one too many
      {{0.14, 0.14, 0.14, 0.14, 0.14}, 0.1, 0.07, {0.01, 0.01, 0.01, 0.01, 0.03}, 4},
      {{1, 1, 0, 0, 0}, 0.333, 0.67, {0.33, 0.34, 0, 0, 0}, 1},  // equal shares: the later one
      {{5, 1, 1, 1, 1}, 0.004, 0.04, {0.04, 0, 0, 0, 0}, 0},
      {{0, 0, 0, 0, 0}, 0.5, 0, {0, 0, 0, 0, 0}, 4},
  };
  for (const auto& [totals, factor, adjustment, expected, largest] : cases) {
    VatAmounts shares{};
    double total = std::accumulate(totals.begin(), totals.end(), 0.0);
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
