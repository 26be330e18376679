#include <cmath>

#include "automation/number_text.h"
#include "interface/cls_accumulator.h"
#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

/// What a member writes to its parameter.
const std::tuple<bool, Byte, Short, Long, double, Text, Value> kWritten{true, Byte{200}, Short{300},  Long{70000},
                                                                        2.5,  u"12,5",   Text(u"any")};

/// A class with a parameter of every kind. Each member returns what it saw.
struct Subject : ObjectOf<Subject> {
  static constexpr std::string_view kName = "Subject";
  static const ClassInfo& describe();

  template <class T>
  Value by(T value) {
    return ++runs, Value(value);
  }
  template <class T>
  Value ref(T& value) {
    Value seen = by(value);
    value = std::get<T>(kWritten);
    return seen;
  }
  Value options(Short required, Short& number, Text& text, bool& flag) {
    return Text(numberText(Long{required}) + u" " + numberText(Long{number}) + u" " + text + (flag ? u" yes" : u" no"));
  }
  Value record(clsStatus& status) { return ++runs, Value(status.FiscalType); }
  void failLate(Short& number, Text& text) {
    number = 5, text = u"half";
    throw AutomationError(AutomationCode::badIndex);
  }
  Short readIt() { return 9; }
  void writeIt(Short value) { property = value; }

  int runs = 0;
  Short property = 1;
};

const ClassInfo& Subject::describe() {
  static const ClassInfo info =
      ClassBuilder<Subject>()
          .method("byBool", &Subject::by<bool>, {"v"})
          .method("byByte", &Subject::by<Byte>, {"v"})
          .method("byShort", &Subject::by<Short>, {"v"})
          .method("byLong", &Subject::by<Long>, {"v"})
          .method("byReal", &Subject::by<double>, {"v"})
          .method("byText", &Subject::by<Text>, {"v"})
          .method("byVariant", &Subject::by<Value>, {"v"})
          .method("refBool", &Subject::ref<bool>, {"v"})
          .method("refByte", &Subject::ref<Byte>, {"v"})
          .method("refShort", &Subject::ref<Short>, {"v"})
          .method("refLong", &Subject::ref<Long>, {"v"})
          .method("refReal", &Subject::ref<double>, {"v"})
          .method("refText", &Subject::ref<Text>, {"v"})
          .method("refVariant", &Subject::ref<Value>, {"v"})
          .method("options", &Subject::options,
                  {"required", optional("number", Short{4}), optional("text"), optional("flag", true)})
          .method("record", &Subject::record, {"c"})
          .method("failLate", &Subject::failLate, {"number", "text"})
          .readOnly("readIt", &Subject::readIt)
          .writeOnly("writeIt", &Subject::writeIt)
          .property("property", &Subject::property)
          .build();
  return info;
}

class Automation : public ComponentTest {
 protected:
  std::uint32_t invokeError(const char* member, std::vector<Argument> arguments,
                            ClassInfo::Access access = ClassInfo::Access::callOrRead) {
    return errorOf([&] { subject->invoke(member, access, arguments); });
  }
  std::shared_ptr<Subject> subject = std::make_shared<Subject>();
};

/// "i7" is a Short, "y" a Byte, "l" a Long, "d" a Double, "t" a text, "b1" True; "e" is Empty, "n" Null, "o" Nothing.
Value parse(const std::string& notation) {
  const std::string value = notation.substr(1);
  const char kind = notation[0];
  if (kind == 'n') return Null{};
  if (kind == 'o') return ObjectPtr{};
  if (kind == 't') return fromUtf8(value);
  if (kind == 'e') return {};
  const double number = std::stod(value);
  if (kind == 'b') return number != 0;
  if (kind == 'y') return static_cast<Byte>(number);
  if (kind == 'i') return static_cast<Short>(number);
  return kind == 'l' ? Value(static_cast<Long>(number)) : Value(number);
}

TEST_F(Automation, EveryKindConvertsToEveryKind) {
  // Parameter, value given, value seen by the member; "!" and an error that keeps the member from running.
  const char* const cases =
      "Bool e b0|Byte e y0|Short e i0|Long e l0|Real e d0|Text e t|Variant e e|Variant n n|Variant o o|Variant y9 y9|"
      "Bool i-1 b1|Bool d0.5 b1|Bool t0 b0|Bool t1 b1|Byte d255.4 y255|Byte d255.5 !overflow|Byte d-0.5 y0|"
      "Byte i-1 !overflow|Byte l256 !overflow|Short b1 i-1|Short d2.5 i2|Short d3.5 i4|Short d-2.5 i-2|"
      "Short d32767.4 i32767|Short d32767.5 !overflow|Short d-32768.5 i-32768|Short l32768 !overflow|Short y255 i255|"
      "Short t2,5 i2|Short t3.5 i4|Short t70000 !overflow|Long d2147483647.4 l2147483647|"
      "Long d2147483647.5 !overflow|Long d1e300 !overflow|Long dnan !overflow|Long dinf !overflow|"
      "Long t1e999 !overflow|Real b1 d-1|Real l70000 d70000|Real t2,5 d2.5|Real t2.5 d2.5|Real t1e3 d1000|"
      "Real t.5 d0.5|Real t+7 d7|Text d2.5 t2.5|Text i-7 t-7|Text d0.30000000000000004 t0.3|Text y8 t8|"
      "Bool n !mismatch|Byte n !mismatch|Short n !mismatch|Long n !mismatch|Real n !mismatch|Text n !mismatch|"
      "Short o !mismatch|Text o !mismatch|Real o !mismatch";
  for (const char* bad :
       {"", "abc", "12ab", "1.000,5", "1,000,5", "0x10", "-", ",", "1 2", "e5", "--1", "nan", "inf"}) {
    EXPECT_EQ(errorOf([&] { subject->call("byReal", fromUtf8(bad)); }), kTypeMismatch) << bad;
    EXPECT_EQ(errorOf([&] { subject->call("refShort", fromUtf8(bad)); }), kTypeMismatch) << bad;
  }
  EXPECT_EQ(subject->call("byReal", u"  -12 "), Value(-12.0));
  for (const Text& row : split(fromUtf8(cases), u'|')) {
    const auto words = split(row, u' ');
    const Value given = parse(toUtf8(words[1]));
    const bool fails = words[2].starts_with(u"!");
    for (const std::string how : {"by", "ref"}) {
      SCOPED_TRACE(how + toUtf8(row));
      Value seen;
      subject->runs = 0;
      EXPECT_EQ(errorOf([&] { seen = subject->call(how + toUtf8(words[0]), given); }), !fails ? 0
                                                                                       : words[2] == u"!overflow"
                                                                                           ? kOverflow
                                                                                           : kTypeMismatch);
      EXPECT_EQ(subject->runs, fails ? 0 : 1);
      EXPECT_EQ(seen, fails ? Value() : parse(toUtf8(words[2])));
    }
  }
}

TEST_F(Automation, AVariantOfTheCallersTakesTheTypeThatTheMemberGives) {
  const std::pair<const char*, Value> cases[] = {
      {"refBool", std::get<bool>(kWritten)},    {"refByte", std::get<Byte>(kWritten)},
      {"refShort", std::get<Short>(kWritten)},  {"refLong", std::get<Long>(kWritten)},
      {"refReal", std::get<double>(kWritten)},  {"refText", std::get<Text>(kWritten)},
      {"refVariant", std::get<Value>(kWritten)}};
  for (const auto& [member, after] : cases) {
    for (const Value& before : {Value(), Value(Text(u"1")), Value(Long{1}), Value(1.0), Value(true)}) {
      Value variable = before;
      subject->call(member, variable);
      EXPECT_EQ(variable, after) << member << " from kind " << before.index();
    }
  }
}

TEST_F(Automation, ATypedVariableKeepsItsType) {
  bool flag = false;
  Byte small = 1;
  Short number = 1;
  Long large = 1;
  double real = 1;
  Text text = u"1";
  // The member's own type: used in place. Another type: the result converted, and the nearest where it does not fit.
  const auto call = [&](const char* member, auto& variable) { return subject->call(member, variable), variable; };
  EXPECT_EQ(call("refShort", number), 300);
  EXPECT_EQ(call("refReal", real), 2.5);
  EXPECT_EQ(call("refText", text), u"12,5");
  EXPECT_EQ(call("refShort", large), 300);
  EXPECT_EQ(call("refShort", real), 300.0);
  EXPECT_EQ(call("refReal", text), u"2.5");
  EXPECT_EQ(call("refShort", small), 255);
  number = 1;
  EXPECT_EQ(call("refLong", number), 32767);
  EXPECT_EQ(call("refReal", number), 2);
  number = 0;
  EXPECT_EQ(call("refBool", number), -1);
  EXPECT_EQ(call("refShort", flag), true);
}

TEST_F(Automation, AVariableThatCannotTakeTheResultIsRefusedBeforeTheMemberRuns) {
  Short number = 7;
  double real = 7;
  bool flag = true;
  Text word = u"word";
  ObjectPtr object = subject;
  EXPECT_EQ(errorOf([&] { subject->call("refText", number); }), kTypeMismatch);
  EXPECT_EQ(errorOf([&] { subject->call("refText", real); }), kTypeMismatch);
  EXPECT_EQ(errorOf([&] { subject->call("refText", flag); }), kTypeMismatch);
  EXPECT_EQ(errorOf([&] { subject->call("refText", object); }), kTypeMismatch);
  EXPECT_EQ(errorOf([&] { subject->call("refShort", object); }), kTypeMismatch);
  EXPECT_EQ(errorOf([&] { subject->call("refShort", word); }), kTypeMismatch);
  EXPECT_EQ(subject->runs, 0);
  EXPECT_EQ(number, 7);
  EXPECT_EQ(word, u"word");
  EXPECT_EQ(object, subject);
}

TEST_F(Automation, CountsAndOptions) {
  const Argument three{Value(Short{3})}, none;
  EXPECT_EQ(subject->call("options", 3), Value(Text(u"3 4  yes")));
  EXPECT_EQ(subject->call("options", 3, 8, u"x", false), Value(Text(u"3 8 x no")));
  const Argument gap[] = {three, none, Argument(Value(Text(u"t")))};
  EXPECT_EQ(subject->invoke("options", ClassInfo::Access::call, gap), Value(Text(u"3 4 t yes")));
  EXPECT_EQ(invokeError("options", {}), kBadCount);
  EXPECT_EQ(invokeError("options", {three, three, three, three, three}), kBadCount);
  EXPECT_EQ(invokeError("byShort", {}), kBadCount);
  EXPECT_EQ(invokeError("readIt", {three}), kBadCount);
  EXPECT_NE(invokeError("options", {none, three}), 0u);
  EXPECT_NE(invokeError("refShort", {none}), 0u);
  EXPECT_EQ(subject->runs, 0);
  try {
    subject->call("options", 3, u"4", u"t", u"maybe");
    ADD_FAILURE() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.argument(), 3);
  }
}

TEST_F(Automation, RecordsOfTheWrongClassAreRefused) {
  auto status = std::make_shared<clsStatus>();
  status->FiscalType = 3;
  Value variable = ObjectPtr(status);
  ObjectPtr typed = status;
  EXPECT_EQ(subject->call("record", *status), Value(Short{3}));
  EXPECT_EQ(subject->call("record", variable), Value(Short{3}));
  EXPECT_EQ(subject->call("record", typed), Value(Short{3}));
  EXPECT_EQ(errorOf([&] { subject->call("record", *std::make_shared<clsAccumulator>()); }), kTypeMismatch);
  for (const Value& wrong : {Value(), Value(Null{}), Value(ObjectPtr()), Value(Short{3}), Value(Text(u"3"))}) {
    EXPECT_EQ(invokeError("record", {Argument(wrong)}), kTypeMismatch) << wrong.index();
  }
  auto port = std::make_shared<cPortProp>();
  EXPECT_EQ(errorOf([&] {
              const Argument wrong[] = {Argument(Value(ObjectPtr(status)))};
              port->invoke("TCPClass", ClassInfo::Access::write, wrong);
            }),
            kTypeMismatch);
}

TEST_F(Automation, MembersAnswerOnlyToTheirKindOfAccess) {
  using Access = ClassInfo::Access;
  const Argument value(Value(Short{1}));
  struct Case {
    const char* member;
    bool call, read, callOrRead, write;
  };
  const Case cases[] = {{"byShort", true, false, true, false},  {"readIt", false, true, true, false},
                        {"writeIt", false, false, false, true}, {"property", false, true, true, true},
                        {"PROPERTY", false, true, true, true},  {"nothing", false, false, false, false},
                        {"", false, false, false, false}};
  for (const auto& [member, call, read, callOrRead, write] : cases) {
    const std::pair<Access, bool> ways[] = {
        {Access::call, call}, {Access::read, read}, {Access::callOrRead, callOrRead}, {Access::write, write}};
    for (const auto& [access, works] : ways) {
      EXPECT_EQ(subject->classInfo().find(member, access) != nullptr, works) << member << int(access);
      if (!works) {
        EXPECT_EQ(invokeError(member, {value}, access), kMemberNotFound) << member << int(access);
      }
    }
  }
}

TEST_F(Automation, WhatWasWrittenBeforeAnErrorReachesTheCaller) {
  Short number = 1;
  Value text;
  EXPECT_EQ(errorOf([&] { subject->call("failLate", number, text); }), kBadIndex);
  EXPECT_EQ(number, 5);
  EXPECT_EQ(text, Value(Text(u"half")));
}

}  // namespace
}  // namespace mirvane::test
