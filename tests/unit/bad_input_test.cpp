#include <cmath>
#include <random>

#include "support/price_adjustments.h"
#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

class BadInput : public DriverTest {};

TEST_F(BadInput, HugeAndForbiddenTextsReachTheDeviceHarmless) {
  const Text huge(100000, u'/');
  EXPECT_EQ(call("executeCashIn", 1.0, huge)[0], "6/0/1.00/" + std::string(100000, '-') + "/");

  const Text controls = u"a\x02\x03\x05\x06\x15\x18z";
  EXPECT_THAT(call("ItemSale", controls, 1.0, 1.0, 24.0, 1), ElementsAre("3/S//a??????z///1.000/1.00/1/24.00/1/"));
  send(TextView(u"a\0b\r\n\t", 6));
  EXPECT_EQ(device.commands.back(), std::string("a\0b\r\n\t", 6));
}

TEST_F(BadInput, NumbersThatAreNoneAreRefusedBeforeAnythingIsSent) {
  for (const double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL}) {
    double typed = bad;
    EXPECT_EQ(errorOf([&] { run(*driver, "ItemSale", u"A", bad, 1.0, 24.0, 1); }), kOverflow);
    EXPECT_EQ(errorOf([&] { run(*driver, "Payment", 2, u"A", typed, 0, 0); }), kOverflow);
    EXPECT_EQ(errorOf([&] { run(*driver, "executeCashIn", typed, u""); }), kOverflow);
  }
  EXPECT_THAT(device.commands, IsEmpty());
  EXPECT_EQ(lastItem().amount, 0);
}

/// Runs everything that reads replies against replies that make no sense.
TEST_F(BadInput, RepliesOfAnyKindEndInAResult) {
  std::mt19937 random(7);
  const std::string alphabet = "0123456789ABCDEFabcdef///  .,-+eE\x01\x7F\x80\xC1\xFF\x06\x15\x02";
  const auto garbage = [&] {
    std::string text;
    for (auto left = random() % 40; left > 0; --left) {
      text += random() % 8 == 0 ? static_cast<char>(random() % 256) : alphabet[random() % alphabet.size()];
    }
    std::erase(text, wire::kEtx);
    return random() % 2 == 0 ? text : "00/00/00/" + text;
  };
  for (const bool isNetwork : {false, true}) {
    if (isNetwork) connectNetwork();
    for (int i = 0; i < 3000; ++i) {
      clock.now = 0;
      device.script.clear();
      screen.expectsWaits = true;
      sockets.inbox.arriving.clear();
      const std::string reply = garbage();
      device.answer(reply).answer(garbage()).answer(garbage()).answer(garbage());
      for (int last = 0; last < 8; ++last) device.answer("9C/00/00/");  // what any wait ends with
      const auto error = errorOf([&] {
        if (i % 5 == 0) run(*driver, "GetVersionInfo");
        if (i % 5 == 1) driver->call("Payment", 1, u"A", 1.0, 0, 0, Result, Exresult, SupressError_, u"", true);
        if (i % 5 == 2) run(*driver, "printerStatusRead");
        if (i % 5 == 3) run(*driver, "VoidReceipt");
        if (i % 5 == 4) send(u"?/");
      });
      EXPECT_EQ(error, 0u) << i << " " << reply;
      EXPECT_TRUE((Result >= 0 && Result <= 255) || Result == -3) << Result << " " << reply;
    }
  }
}

TEST_F(BadInput, AReplyMayBeMadeOfTheHalvesOfTwo) {
  device.raw({{wire::kStx + std::string("00/0")}}).silence(2).raw({{"0/00/\x03"}});
  send(u"?/");
  EXPECT_EQ(std::tuple(Result, exresult()), std::tuple(0, "00/00/00/"));
}

}  // namespace
}  // namespace mirvane::test
