#include "interface/cls_param.h"
#include "interface/dec2bin.h"
#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

class Records : public ComponentTest {};

// Names, order, types and dispatch ids are compared as a whole with the registered type library's expected shape.
TEST_F(Records, PropertiesStartEmptyAndStoreWhatTheyAreGiven) {
  const std::map<TypeKind, std::pair<Value, Value>> samples = {{TypeKind::boolean, {false, true}},
                                                               {TypeKind::byte, {Byte{0}, Byte{255}}},
                                                               {TypeKind::integer16, {Short{0}, Short{-7}}},
                                                               {TypeKind::integer32, {Long{0}, Long{-70000}}},
                                                               {TypeKind::real, {0.0, -1.25}},
                                                               {TypeKind::text, {Text(), Text(u"ά/\"~\n")}}};
  int checked = 0;
  for (const PublicClass& entry : publicClasses()) {
    const ObjectPtr record = entry.create();
    for (const Member& member : record->classInfo().members()) {
      const bool isProperty = record->classInfo().find(member.name, ClassInfo::Access::write) != nullptr;
      const auto sample = samples.find(member.result.kind);
      if (member.kind != MemberKind::get || !isProperty || sample == samples.end()) continue;
      SCOPED_TRACE(std::string(entry.describe().name()) + "." + std::string(member.name));
      const auto& [initial, stored] = sample->second;
      EXPECT_EQ(record->call(member.name), initial);
      put(*record, member.name, stored);
      EXPECT_EQ(record->call(member.name), member.name == "useLCDdisplay" ? Value(Byte{254}) : stored);
      ++checked;
    }
  }
  EXPECT_EQ(checked, 76);
}

TEST_F(Records, ConvertedOnSetting) {
  struct Case {
    const char* member;
    int given;
    Value read;
  };
  const Case cases[] = {{"useLCDdisplay", 1, Byte{0}},    {"useLCDdisplay", 0, Byte{1}},
                        {"useLCDdisplay", 2, Byte{1}},    {"Decimal_", 0, Text(u"0")},
                        {"Decimal_", 1, Text(u"1")},      {"Decimal_", 6, Text(u"110")},
                        {"Decimal_", 255, Text(8, u'1')}, {"Decimal_", 32767, Text(15, u'1')},
                        {"Decimal_", -3, Text(u"1")},     {"Decimal_", -32768, Text(u"0")}};
  const auto settings = std::make_shared<clsParam>();
  const auto digits = std::make_shared<dec2Bin>();
  EXPECT_EQ(digits->call("Bin_"), Value());
  for (const auto& [member, given, read] : cases) {
    const bool isDigits = std::string_view(member) == "Decimal_";
    Object& record = isDigits ? static_cast<Object&>(*digits) : *settings;
    put(record, member, Value(Long{given}));
    EXPECT_EQ(record.call(isDigits ? "Bin_" : member), read) << member << " " << given;
  }
}

TEST_F(Records, ThePortPropertiesAlwaysHaveANetworkEndpoint) {
  const auto properties = std::make_shared<cPortProp>();
  const Value first = properties->call("TCPClass");
  ASSERT_NE(std::get<ObjectPtr>(first), nullptr);
  EXPECT_EQ(properties->call("TCPClass"), first);
  put(*properties, "TCPClass", ObjectPtr());
  EXPECT_NE(std::get<ObjectPtr>(properties->call("TCPClass")), nullptr);
  EXPECT_EQ(errorOf([&] { put(*properties, "TCPClass", ObjectPtr(properties)); }), kTypeMismatch);
}

}  // namespace
}  // namespace mirvane::test
