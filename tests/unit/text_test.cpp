#include <cmath>
#include <numeric>

#include "records/cls_param.h"
#include "records/dec2bin.h"
#include "support/vat_shares.h"
#include "tests/fakes/component_test.h"
#include "text/code_page.h"
#include "text/numbers.h"

namespace mirvane::test {
namespace {

class Utilities : public ComponentTest {};

TEST_F(Utilities, CleanTextTakesAccentsAndSlashesAway) {
  const std::pair<const char*, const char*> cases[] = {
      {"Καφές/Τσάι", "Καφες-Τσαι"}, {"άΆέΈήΉίΊόΌύΎώΏ", "αΑεΕηΗιΙοΟύΥωΩ"}, {"//ϊϋΐΰΪΫ é ς", "--ϊϋΐΰΪΫ é ς"}};
  for (const auto& [given, clean] : cases) {
    EXPECT_EQ(toUtf8(cleanText(fromUtf8(given))), clean);
  }
}

TEST_F(Utilities, TheCodePageReplacesMarkedLettersByPlainOnes) {
  const std::tuple<const char*, const char*, bool> cases[] = {
      {"Müller Café š Łódź Ñ ÿ ǰ", "Muller Cafe s Lodz N y j", false},
      {"ƒΏ§½ά", "\x83\xBF\xA7\xBD\xDC", false},
      {"Àé×", "Ae?", true},
      {"ßæŒıǱЖ日", "???????", true},
      {"\U0001F600é", "?e", true}};
  for (const auto& [text, bytes, isReplaced] : cases) {
    bool replaced = !isReplaced;
    EXPECT_EQ(toCodePage(fromUtf8(text), &replaced), bytes);
    EXPECT_EQ(replaced, isReplaced) << text;
  }
}

TEST_F(Utilities, AmountsAndQuantities) {
  const auto written = [](auto format, std::initializer_list<double> values) {
    std::string text;
    for (const double value : values) text += toUtf8(format(value)) + " ";
    return text;
  };
  EXPECT_EQ(written(formatAmount, {0, 1234.5, 0.125, -0.125, 2.675, 1.005, -2.675, -0.005, -0.001, -0.0, 0.004999,
                                   1e-300, 999999.995, 0.1 + 0.2, 1e15, 4.35 * 100, 123456789012.345}),
            "0.00 1234.50 0.13 -0.13 2.68 1.01 -2.68 -0.01 0.00 0.00 0.00 0.00 1000000.00 0.30 1000000000000000.00 "
            "435.00 123456789012.35 ");
  EXPECT_EQ(written(formatQuantity, {2.0, 0.0005, 1.2345, 1.23449, -0.0004, -1.0005}),
            "2.000 0.001 1.235 1.234 0.000 -1.001 ");
}

TEST_F(Utilities, WholeNumbersFromTexts) {
  const std::pair<const char*, Short> cases[] = {{"2.5", 2},         {"3.5", 4},   {"-2.5", -2}, {" 7 ", 7},
                                                 {"12ab", 0},        {"", 0},      {"2,5", 2},   {"1e2", 100},
                                                 {"-32768", -32768}, {"32768", 0}, {"1e99", 0},  {"0.5", 0}};
  for (const auto& [text, number] : cases) EXPECT_EQ(toInt(fromUtf8(text)), number) << text;
}

TEST_F(Utilities, PropertiesThatConvertWhatTheyAreGiven) {
  const auto settings = std::make_shared<clsParam>();
  for (const auto& [given, read] : {std::pair(1, 0), {0, 1}, {2, 1}, {255, 254}}) {
    put(*settings, "useLCDdisplay", Long{given});
    EXPECT_EQ(settings->call("useLCDdisplay"), Value(static_cast<Byte>(read)));
  }
  const auto digits = std::make_shared<dec2Bin>();
  EXPECT_EQ(digits->call("Bin_"), Value());
  for (const auto& [given, read] :
       {std::pair(0, "0"), {1, "1"}, {6, "110"}, {32767, "111111111111111"}, {-3, "1"}, {-32768, "0"}}) {
    put(*digits, "Decimal_", Long{given});
    EXPECT_EQ(digits->call("Bin_"), Value(fromUtf8(read)));
  }
}

TEST_F(Utilities, TheRemainderGoesToTheLargestShare) {
  constexpr auto kDiscount = Adjustment::discount, kMarkUp = Adjustment::markUp;
  const std::tuple<VatAmounts, double, double, VatAmounts, Short, Adjustment> cases[] = {
      {{10, 20, 30, 0, 0}, -0.1, 6, {1, 2, 3, 0, 0}, 2, kDiscount},
      {{0.05, 0.05, 0.05, 0, 0}, 0.1, 0.02, {0.01, 0.01, 0, 0, 0}, 2, kMarkUp},  // 3 * 0.01 rounded up, one too many
      {{0.14, 0.14, 0.14, 0.14, 0.14}, 0.1, 0.07, {0.01, 0.01, 0.01, 0.01, 0.03}, 4, kDiscount},
      {{1, 1, 0, 0, 0}, 0.333, 0.67, {0.33, 0.34, 0, 0, 0}, 1, kDiscount},  // equal shares: the later one
      {{5, 1, 1, 1, 1}, 0.004, 0.04, {0.04, 0, 0, 0, 0}, 0, kMarkUp},
      {{0, 0, 0, 0, 0}, 0.5, 0, {0, 0, 0, 0, 0}, 4, kDiscount},
      {{0, 0.12, 0.13, 0.11, 0.14}, -0.95, 0.48, {0, 0.11, 0.13, 0.1, 0.14}, 4, kDiscount},  // no more than a category
                                                                                             // has
      {{0, 0.12, 0.13, 0.11, 0.14}, -0.95, 0.48, {0, 0.11, 0.12, 0.1, 0.15}, 4, kMarkUp},
  };
  for (const auto& [totals, factor, adjustment, expected, largest, kind] : cases) {
    VatAmounts shares{};
    double total = std::accumulate(totals.begin(), totals.end(), 0.0);
    EXPECT_EQ(apportionByVat(totals, shares, total, factor, kind), largest) << testing::PrintToString(totals);
    EXPECT_NEAR(total, adjustment, 1e-9) << testing::PrintToString(totals);
    for (std::size_t k = 0; k < 5; ++k) EXPECT_NEAR(shares[k], expected[k], 1e-9) << testing::PrintToString(totals);
  }
  VatAmounts totals{std::nan(""), 1, 1, 1, 1}, shares{};
  double total = 4;
  EXPECT_EQ(errorOf([&] { apportionByVat(totals, shares, total, 0.1, Adjustment::discount); }), kOverflow);
}

}  // namespace
}  // namespace mirvane::test
