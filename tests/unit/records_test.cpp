#include <map>

#include "interface/cls_eft.h"
#include "interface/cls_param.h"
#include "interface/dec2bin.h"
#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

using Access = ClassInfo::Access;

class Records : public ComponentTest {};

// Names, order, types and dispatch ids are compared as a whole with the registered type library's expected shape.
TEST_F(Records, PropertiesStartEmptyAndStoreWhatTheyAreGiven) {
  struct Sample {
    Value initial, stored;
  };
  const std::map<TypeKind, Sample> samples = {{TypeKind::boolean, {false, true}},
                                              {TypeKind::byte, {Byte{0}, Byte{255}}},
                                              {TypeKind::integer16, {Short{0}, Short{-7}}},
                                              {TypeKind::integer32, {Long{0}, Long{-70000}}},
                                              {TypeKind::real, {0.0, -1.25}},
                                              {TypeKind::text, {Text(), Text(u"ά/\"~\n")}}};
  int checked = 0;
  for (const PublicClass& entry : publicClasses()) {
    const ObjectPtr record = entry.create();
    for (const Member& member : record->classInfo().members()) {
      const bool isProperty = record->classInfo().find(member.name, Access::write) != nullptr;
      const auto sample = samples.find(member.result.kind);
      if (member.kind != MemberKind::get || !isProperty || sample == samples.end()) continue;
      SCOPED_TRACE(std::string(entry.describe().name()) + "." + std::string(member.name));
      const Argument stored[] = {Argument(sample->second.stored)};
      EXPECT_EQ(record->call(member.name), sample->second.initial);
      record->invoke(member.name, Access::write, stored);
      if (member.name != "useLCDdisplay") {
        EXPECT_EQ(record->call(member.name), sample->second.stored);
      }
      ++checked;
    }
  }
  EXPECT_EQ(checked, 76);
}

TEST_F(Records, TheDisplaySettingIsStoredInverted) {
  const ObjectPtr settings = create("clsParam");
  const std::pair<Byte, Byte> cases[] = {{1, 0}, {0, 1}, {2, 1}, {255, 254}};
  for (const auto& [given, read] : cases) {
    const Argument value[] = {Argument(Value(given))};
    settings->invoke("useLCDdisplay", Access::write, value);
    EXPECT_EQ(settings->call("useLCDdisplay"), Value(read)) << int(given);
  }
}

TEST_F(Records, BinaryDigits) {
  const ObjectPtr converter = create("dec2Bin");
  EXPECT_EQ(converter->call("Bin_"), Value());
  const std::pair<Short, Text> cases[] = {
      {0, u"0"},   {1, u"1"},   {2, u"10"},         {3, u"11"},          {4, u"100"},
      {5, u"101"}, {6, u"110"}, {255, u"11111111"}, {256, u"100000000"}, {32767, Text(15, u'1')},
      {-1, u"1"},  {-2, u"0"},  {-3, u"1"},         {-32768, u"0"}};
  for (const auto& [number, digits] : cases) {
    const Argument value[] = {Argument(Value(number))};
    converter->invoke("Decimal_", Access::write, value);
    EXPECT_EQ(converter->call("Bin_"), Value(digits)) << number;
  }
}

TEST_F(Records, ThePortPropertiesAlwaysHaveANetworkEndpoint) {
  const ObjectPtr properties = create("cPortProp");
  const Value first = properties->call("TCPClass");
  ASSERT_NE(std::get<ObjectPtr>(first), nullptr);
  EXPECT_EQ(properties->call("TCPClass"), first);
  const Value other = create("cTCPIP");
  const Argument set[] = {Argument(other)}, nothing[] = {Argument(Value(ObjectPtr()))};
  properties->invoke("TCPClass", Access::write, set);
  EXPECT_EQ(properties->call("TCPClass"), other);
  properties->invoke("TCPClass", Access::write, nothing);
  EXPECT_NE(std::get<ObjectPtr>(properties->call("TCPClass")), nullptr);
}

}  // namespace
}  // namespace mirvane::test
