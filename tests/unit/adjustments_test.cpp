#include <random>

#include "emulator/loopback.h"
#include "support/price_adjustments.h"
#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

using emulator::Cents;
using emulator::VatSums;

/// A driver at the emulated register, without a line between them.
class Adjustments : public ComponentTest {
 protected:
  Adjustments() {
    moduleState().platform = &machineAtRegister;
    moduleState().currentDriver = driver;
    run(*driver, "Connect_", u"COM1");
  }
  void sell(std::size_t vat, Cents price) {
    run(*driver, "ItemSale", u"A", 1.0, static_cast<double>(price) / 100, kRates[vat], static_cast<Short>(vat + 1));
    EXPECT_EQ(Result, 0) << exresult();
  }
  // The caller's value after the call.
  double adjust(bool onLastItem, std::string_view member, double value) {
    clock.now = 0;
    const auto adjustment = std::get<ObjectPtr>(driver->call("adjustment", onLastItem));
    run(*adjustment, member, u"Έκπτωση", value);
    return value;
  }
  const VatSums& sums() { return device.fiscal().receipt->vatSums(); }

  static constexpr std::array<double, 5> kRates = {24, 13, 6, 36, 0};

  emulator::Device device;
  emulator::Faults faults;
  emulator::LoopbackPort line{device, faults, clock};
  platform::Platform machineAtRegister{line, sockets, clock, screen, files};
  std::shared_ptr<FiscalVarlenModule2> driver = std::make_shared<FiscalVarlenModule2>();
};

// The register checks the shares itself: their sum, and that no category falls below zero.
TEST_F(Adjustments, AnySubtotalTakesTheWholeAdjustment) {
  std::mt19937 random(20261121);
  for (int i = 0; i < 1000; ++i) {
    VatSums before{};
    // Ties, cents and large sums; often only some of the categories.
    const Cents most = i % 3 == 0 ? 3 : i % 3 == 1 ? 200 : 500000;
    for (std::size_t vat = 0; vat < before.size(); ++vat) {
      if (vat != static_cast<std::size_t>(i) % 5 && random() % 3 == 0) continue;
      before[vat] = static_cast<Cents>(random() % static_cast<unsigned>(most)) + 1;
      sell(vat, before[vat]);
    }
    const Cents total = emulator::sumOf(before);
    const bool isDiscount = random() % 2 == 0, isPercent = i % 4 == 0;
    const Cents percent = 50 + static_cast<Cents>(random()) % 51;
    const Cents amount = isPercent    ? (total * percent + 50) / 100
                         : i % 7 == 0 ? total
                         : i % 7 == 1 ? 1
                                      : static_cast<Cents>(random()) % total + 1;
    SCOPED_TRACE(testing::PrintToString(before) + (isDiscount ? " - " : " + ") + std::to_string(amount));
    adjust(false, std::string(isPercent ? "percent" : "amount") + (isDiscount ? "Discount" : "MarkUp"),
           static_cast<double>(isPercent ? 100 * percent : amount) / 100);
    ASSERT_EQ(Result, 0) << exresult();
    EXPECT_EQ(emulator::sumOf(sums()), total + (isDiscount ? -amount : amount));
    device.fiscal().cancelReceipt();
  }
}

TEST_F(Adjustments, PercentAndItem) {
  const std::tuple<bool, const char*, double, double, Cents> cases[] = {
      {true, "percentDiscount", -10, 1, 900},  {true, "percentMarkUP", 2.5, 0.25, 1025},
      {true, "percentDiscount", 100, 10, 0},   {true, "amountMarkUp", -0.01, 0.01, 1001},
      {true, "amountDiscount", 0.5, 0.5, 950}, {false, "percentDiscount", 50, 50, 2505 - 1253},
      {false, "percentMarkUP", -10, 10, 2756}};
  for (const auto& [onLastItem, member, value, after, expected] : cases) {
    if (!onLastItem) sell(0, 1505);
    sell(1, 1000);
    EXPECT_EQ(adjust(onLastItem, member, value), after) << member;
    EXPECT_EQ(Result, 0) << exresult();
    EXPECT_EQ(emulator::sumOf(sums()), expected) << member << " " << value;
    device.fiscal().cancelReceipt();
  }
  sell(1, 1000);
  adjust(false, "amountDiscount", 10.01);
  EXPECT_EQ(Result, 72) << exresult();
  EXPECT_EQ(emulator::sumOf(sums()), 1000);
}

TEST_F(DriverTest, AdjustmentCommands) {
  const auto adjust = [this](bool onLastItem, const char* member, double value) {
    device.commands.clear();
    const auto adjustment = std::get<ObjectPtr>(driver->call("adjustment", onLastItem));
    adjustment->call(member, u"Έκπτωση", value, Result, Exresult, SupressError_, u"σ/χ");
    return device.commands;
  };
  lastItem().department = 1;
  lastItem().amount = 10;
  EXPECT_THAT(adjust(true, "percentMarkUP", -10), ElementsAre("4/3/1/Εκπτωση/σ-χ/1.00/0/0/0/0/0/"));
  device.answer("00/04/00/10.00/5.00/0.00/0.00/0.00/7/15.00/");
  EXPECT_THAT(adjust(false, "amountDiscount", 1),
              ElementsAre("9/", "4/2/1/Εκπτωση/σ-χ/1.00/0.67/0.33/0.00/0.00/0.00/"));
  // Totals that are not the receipt's, and a receipt without a total.
  const std::tuple<const char*, double, const char*, const char*> cases[] = {
      {"percentDiscount", 100, "80.65/0/0/0/0/7/100.00/", "2/1/Εκπτωση/σ-χ/100.00/100.00/0.00/0.00/0.00/0.00/"},
      {"amountDiscount", 5, "0/3/0/9/0/7/4.00/", "2/1/Εκπτωση/σ-χ/5.00/0.00/3.75/0.00/1.25/0.00/"},
      {"percentMarkUP", 100, "1/0/5/0/0/7/10.00/", "4/1/Εκπτωση/σ-χ/10.00/1.00/0.00/9.00/0.00/0.00/"},
      {"amountDiscount", 5, "3/-3/0/0/0/7/0.00/", "2/1/Εκπτωση/σ-χ/5.00/0.00/0.00/0.00/0.00/5.00/"}};
  for (const auto& [member, value, totals, command] : cases) {
    answers({totals});
    EXPECT_THAT(adjust(false, member, value), ElementsAre("9/", std::string("4/") + command));
  }
  device.answer("40/00/00/");
  EXPECT_THAT(adjust(false, "percentMarkUP", 10), ElementsAre("9/"));
  EXPECT_EQ(Result, 64);
  device.answer("00/00/00/10.00/5.00/");
  EXPECT_EQ(errorOf([&] { adjust(false, "percentMarkUP", 10); }), kBadIndex);
  EXPECT_THAT(device.commands, ElementsAre("9/"));
}

}  // namespace
}  // namespace mirvane::test
