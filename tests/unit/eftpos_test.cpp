#include "records/cls_eft.h"
#include "tests/fakes/component_test.h"
#include "text/code_page.h"

namespace mirvane::test {
namespace {

using Eftpos = DriverTest;

TEST_F(Eftpos, Commands) {
  const auto c = std::make_shared<clsEFT>();
  c->eftId = 3, c->eftEnabled = 1, c->eftMDW = 2, c->eftPort = 70000, c->eftTimeout = 60, c->eftIP = u"10.0.0.7";
  c->eftDescription = u"ΤΕΡΜ/ΆΛ ΚΑΡΤΑΣ", c->eftVariant = 4, c->eft_ECRIDFormat = 13, c->eftTID = u"never sent";
  c->bitmap_Main = 5, c->bitmap_2 = 6, c->bitmap_3 = 7, c->bitmap_4 = 8;
  c->MDW_ACQ = u"Ά", c->MDW_TID = u"10", c->eft_TRANS = u"11";
  const std::string rest = "/70000/60/10.0.0.7/ΤΕΡΜ-ΑΛ ΚΑ/", fields = "4/5/6/7/8/Ά/10/11/13/";
  EXPECT_THAT(call("eftWrite", *c), ElementsAre("E/1/3/3" + rest + fields));
  EXPECT_THAT(call("eftdel", *c), ElementsAre("E/4/3/3" + rest + fields));
  EXPECT_THAT(call("eftTest", *c), ElementsAre("E/2/3/1" + rest + "1/0/"));
  const std::tuple<const char*, Short, Short> tooMuch[] = {
      {"eftWrite", 255, 1}, {"eftdel", 32767, 32767}, {"eftWrite", 1, -2}, {"eftTest", 256, 0}, {"eftTest", -1, 1}};
  for (const auto& [name, enabled, middleware] : tooMuch) {
    const char* member = name;
    c->eftEnabled = enabled, c->eftMDW = middleware;
    device.commands.clear();
    EXPECT_EQ(errorOf([&] { run(*driver, member, *c); }), kOverflow) << member;
    EXPECT_THAT(device.commands, IsEmpty());
  }
}

TEST_F(Eftpos, WhatARecordTakesFromTheReply) {
  const auto read = [this](const std::string& reply) {
    const auto c = std::make_shared<clsEFT>();
    c->eftMDW = 77, c->eft_ECRIDFormat = 77;
    device.answer(reply);
    const auto error = errorOf([&] { call("eftRead", *c); });
    std::string text = std::to_string(error);
    for (const Member& row : clsEFT::describe().members()) {
      if (row.kind == MemberKind::get) text += " " + toUtf8(convertTo<Text>(c->call(row.name)));
    }
    return text;
  };
  EXPECT_EQ(read("00/04/00/1/10.0.0.7/70000/T/4/60/5/6/7/8/TID/2.9/A/M/X/13/"),
            "0 0 1 10.0.0.7 70000 T 4 60 5 6 7 8 TID 2 A M X 13");
  EXPECT_THAT(device.commands, ElementsAre("E/0/0////////"));
  EXPECT_EQ(read("00/00/00/1/10.0.0.7/70000/T/4/60/5/6/7/8/TID/"),
            std::to_string(kBadIndex) + " 0 1 10.0.0.7 70000 T 4 60 5 6 7 8 TID 77    77");
  EXPECT_EQ(read("9F/00/00/1/10.0.0.7/"), "0 0 0  0  0 0 0 0 0 0  77    77");
}

}  // namespace
}  // namespace mirvane::test
