#include "facade/fiscal_trevik_module.h"
#include "records/cls_param.h"
#include "tests/fakes/component_test.h"
#include "text/code_page.h"

namespace mirvane::test {
namespace {

class Configuration : public DriverTest {
 protected:
  Configuration() { SupressError_ = false; }

  /// What the outputs hold after the device answered so.
  std::string getServer(const std::string& reply) {
    Byte active = 9;
    Text web = u"w", port = u"p", key = u"k";
    device.answer(reply).answer("06/00/00/");
    call("getServerSettings", active, web, port, key);
    return std::to_string(active) + " " + toUtf8(web) + " " + toUtf8(port) + " " + toUtf8(key);
  }
};

TEST_F(Configuration, Commands) {
  EXPECT_THAT(call("setHeader", u"ΕΠΩΝΥΜΙΑ Α/Ε", 1, u"Οδός ", -2, u"", 0, u"ΐύΎ/", 32767, u"5", 4),
              ElementsAre("H/1/ΕΠΩΝΥΜΙΑ Α-Ε/-2/Οδος /0//32767/ΐύΥ-/4/5/"));
  EXPECT_THAT(call("setFooter", u"Άνω/!", 2, u"β", 1, u"", 3), ElementsAre("Y/2/Ανω-!/1/β/3//"));
  EXPECT_THAT(call("setTempFooter", u"Ά/1", u" ", u"γ/"), ElementsAre("m/Α-1/ /γ-"));
  const Text forty = u"Ά/23456789012345678901234567890123456789";
  const std::string cut = "Α-234567890123456789012345678901234";
  EXPECT_THAT(call("setDepartment", 40, forty, -3), ElementsAre("d/40/" + cut + "/-3/"));
  EXPECT_THAT(call("setCategory", 7, forty), ElementsAre("K/7/" + cut + "/"));
  const auto c = std::make_shared<clsParam>();
  c->printerId = 300, c->printerDescription = u"Ά/3456789", c->cashierDesc = u"Έ/3456789012345678901";
  c->printRECPluDepartment = 1, c->drawerOpenonTotal = 2, c->printREConNoSale = 3, c->printRECVATDetail = 4;
  c->printRECFooterComments = 5, c->printRECTopLogo = -6, c->printRECBottomLogo = 700, c->printerUSeCutter = 255;
  c->setUseLCDdisplay(0);
  EXPECT_THAT(call("settingsWrite", *c), ElementsAre("S/300/Α-345678/Ε-345678901234567890/1/2/3/4/5/-6/700/255/1/"));
}

TEST_F(Configuration, RatesAreSentOnlyWhenOneIsNew) {
  double rates[] = {6, 13, 24, 0, 36};
  const auto setRates = [&] { return call("setVatCategories", rates[0], rates[1], rates[2], rates[3], rates[4]); };
  files.setCatalogue(1, {{92, "Ίδιοι συντελεστές"}}, 93);
  for (const char* current : {"00/00/00/6.00/13/24.0/0.00/36/", "00/04/00/6/13/24/0/36/"}) {
    device.answer(current);
    EXPECT_THAT(setRates(), ElementsAre("e/"));
    EXPECT_EQ(outcome(), "0 Ίδιοι συντελεστές");
  }
  for (std::size_t i = 0; i < 5; ++i) {
    const double old = std::exchange(rates[i], 0.125);
    std::string texts[] = {"6.00/", "13.00/", "24.00/", "0.00/", "36.00/"};
    texts[i] = "0.13/";
    device.answer("00/00/00/6.00/13.00/24.00/0.00/36.00/");
    EXPECT_THAT(setRates(), ElementsAre("e/", "b/" + texts[0] + texts[1] + texts[2] + texts[3] + texts[4]));
    EXPECT_EQ(std::exchange(rates[i], old), 0.125) << "the device's rates are not the caller's";
  }
  device.answer("0A/00/00/1/2/3/4/5/").answer("00/00/00/6/13/24/0/");
  EXPECT_THAT(setRates(), ElementsAre("e/"));
  EXPECT_THAT(screen.boxes, ElementsAre(errorBox(10, "Cannot execute with day open")));
  EXPECT_EQ(errorOf([&] { setRates(); }), kBadIndex);
}

TEST_F(Configuration, TheVatNumberIsPrintedWhateverTheDeviceSaysOfIt) {
  device.answer("78/00/00/").answer("19/00/00/").answer("00/00/00/fed/");
  EXPECT_THAT(call("setVATNumber", u"099999999"),
              ElementsAre("B/////////099999999//////////", "P/VAT = 099999999/2/", "F/8/"));
  EXPECT_EQ(outcome(), "0 00/00/00/fed/") << "that of the last one";
  EXPECT_THAT(screen.boxes, ElementsAre(errorBox(120, "AFM Error"), errorBox(25, "Printer paper end detected")));
}

TEST_F(Configuration, TheServerIsStoredWithTildesForSlashes) {
  called = std::make_shared<fiscalTrevikModule>();
  const std::tuple<const char16_t*, std::string, const char*, const char*> cases[] = {
      {u"https://a/b.php|http://q/r", "https:~~a~b.php/50000/KEY////http:~~q~r/", "00/00/00/s/", "0 00/00/00/s/"},
      {u"a/b.php", "a~b.php/50000/KEY/////", "7A/00/00/", "122 Invalid IP"}};
  for (const auto& [web, fields, reply, told] : cases) {
    // The device may refuse the closing: the outcome is that of the setting.
    device.answer(reply).answer("06/00/00/");
    EXPECT_THAT(call("setServerSettings", Byte{200}, web, u"50000", u"KEY"), ElementsAre("]/200/" + fields, ",/1/"));
    EXPECT_EQ(outcome(), told);
    EXPECT_TRUE(screen.boxes.size() == (Result == 0 ? 0 : 1) && !SupressError_);
  }
}

TEST_F(Configuration, TheServerIsReadBack) {
  called = std::make_shared<fiscalTrevikModule>();
  const std::pair<std::string, std::string> cases[] = {
      {"00/00/00/1/https:~~a~b.php/50000/KEY////http:~~q~r/", "1 https://a/b.php|http://q/r 50000 KEY"},
      {"00/04/00/255/https://a/b.php/80/K////http:~~q~r.php/", "255 https://a/b.php|http://q/r.php 80 K"},
      {"00/00/00/0/a~b.php/8080//////", "0 a/b.php| 8080 "},
      {"00/00/00/1/https:~~a.gr~data/443/KEY////https://q.gr/x.php/", "1 https://a.gr/data|https://q.gr/x.php 443 KEY"},
      {"00/00/00/1/a/b.php/c.php/80/K////q/", "1 a/b.php/c.php|q 80 K"}};
  for (const auto& [reply, expected] : cases) {
    EXPECT_EQ(getServer(reply), expected);
    EXPECT_THAT(device.commands, ElementsAre(",/0/", ",/1/"));
    EXPECT_TRUE(Result == 0 && screen.boxes.empty()) << "nothing of the closing reaches the caller";
  }
  EXPECT_EQ(getServer("88/00/00/1/b.php/80/K////q/"), "9 w p k");
  EXPECT_THAT(device.commands, ElementsAre(",/0/"));
  EXPECT_THAT(screen.boxes, ElementsAre(errorBox(136, "AES Code")));
}

TEST_F(Configuration, WhatTheDeviceHasNoKnownCommandForIsRefused) {
  const auto isRefused = [this](const std::vector<std::string>& commands) {
    EXPECT_THAT(commands, IsEmpty());
    EXPECT_EQ(outcome(), "6 Bad request code");
    EXPECT_EQ(screen.boxes, unlessSuppressed(errorBox(6, "Bad request code")));
  };
  for (const bool suppress : {true, false}) {
    SupressError_ = suppress;
    isRefused(call("sentBitmapData", u"logo.bmp", 1));
    for (const char* member : {"setReceiptBitmap", "setReceiptBitmapSize", "setTaxCardNumber"})
      isRefused(call(member, 1));
  }
}

}  // namespace
}  // namespace mirvane::test
