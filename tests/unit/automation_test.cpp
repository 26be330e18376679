#include "tests/fakes/component_test.h"
#include "text/code_page.h"
#include "text/number_text.h"

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
  Value ref(T& value) {
    return ++runs, Value(std::exchange(value, std::get<T>(kWritten)));
  }
  Value options(Short required, Short& number, Text& text, bool& flag) {
    return Text(numberText(Long{required}) + u" " + numberText(Long{number}) + u" " + text + (flag ? u" yes" : u" no"));
  }
  Value record(clsStatus& status) { return ++runs, Value(status.FiscalType); }
  void tell(Short& result, Text& text, Text& /*unused*/) {
    if (tells) std::tie(result, text) = std::tuple(Short{5}, Text(u"told"));
  }

  int runs = 0;
  bool tells = true;
};

const ClassInfo& Subject::describe() {
  static const ClassInfo info =
      ClassBuilder<Subject>()
          .method("Bool", &Subject::ref<bool>, {"v"})
          .method("Byte", &Subject::ref<Byte>, {"v"})
          .method("Short", &Subject::ref<Short>, {"v"})
          .method("Long", &Subject::ref<Long>, {"v"})
          .method("Real", &Subject::ref<double>, {"v"})
          .method("Text", &Subject::ref<Text>, {"v"})
          .method("Variant", &Subject::ref<Value>, {"v"})
          .method("options", &Subject::options,
                  {"required", optional("number", Short{4}), optional("text"), optional("flag", true)})
          .method("record", &Subject::record, {"c"})
          .method("tell", &Subject::tell, {output("result"), output("text"), optional("unused")})
          .build();
  return info;
}

/// An object of the program's, which stands for what its default member tells.
struct Field : Object {
  explicit Field(Value content) : value(std::move(content)) {}

  const ClassInfo& classInfo() const override { return Subject::describe(); }
  Value invoke(std::string_view member, ClassInfo::Access /*access*/, Arguments /*arguments*/) override {
    EXPECT_EQ(member, kDefaultMember);
    ++reads;
    return value;
  }

  Value value;
  int reads = 0;
};

class Automation : public ComponentTest {
 protected:
  template <class... A>
  std::uint32_t callError(const char* member, A&&... arguments) {
    return errorOf([&] { subject->call(member, std::forward<A>(arguments)...); });
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

TEST_F(Automation, ConvertsOrRefusesBeforeTheMemberRuns) {
  // Parameter, value given, value seen by the member; "!" and an error that keeps the member from running.
  const char* const cases =
      "Bool e b0|Short e i0|Text e t|Variant e e|Variant n n|Variant o o|Bool d0.5 b1|Bool t0 b0|Bool tTRUE b1|"
      "Byte d255.4 y255|Byte d255.5 !overflow|Byte d-0.5 y0|Byte i-1 !overflow|Short b1 i-1|Short d2.5 i2|"
      "Short d3.5 i4|Short d-2.5 i-2|Short d32767.4 i32767|Short d32767.5 !overflow|Short d-32768.5 i-32768|"
      "Short l32768 !overflow|Short t2,5 i2|Short t70000 !overflow|Long d2147483647.5 !overflow|Long dnan !overflow|"
      "Long dinf !overflow|Long t1e999 !overflow|Real l70000 d70000|Real t2,5 d2.5|Real t1e3 d1000|Real t.5 d0.5|"
      "Real t+7 d7|Text d2.5 t2.5|Text i-7 t-7|Text d0.30000000000000004 t0.3|Text b1 tTrue|Bool n !mismatch|"
      "Long n !mismatch|Real n !mismatch|Text n !mismatch|Short o !mismatch|Text o !mismatch|Bool tmaybe !mismatch";
  for (const Text& row : split(fromUtf8(cases), u'|')) {
    SCOPED_TRACE(toUtf8(row));
    const auto words = split(row, u' ');
    const std::string expected = toUtf8(words[2]);
    const bool fails = expected[0] == '!';
    Value seen;
    subject->runs = 0;
    const auto error = errorOf([&] { seen = subject->call(toUtf8(words[0]), Value(parse(toUtf8(words[1])))); });
    EXPECT_EQ(error, !fails ? 0 : expected == "!overflow" ? kOverflow : kTypeMismatch);
    EXPECT_EQ(subject->runs, fails ? 0 : 1);
    EXPECT_EQ(seen, fails ? Value() : parse(expected));
  }
  for (const auto bad : {u"", u"12ab", u"1.000,5", u"1,000,5", u"0x10", u"-", u",", u"1 2", u"e5", u"--1", u"nan"}) {
    EXPECT_EQ(callError("Real", bad), kTypeMismatch) << toUtf8(bad);
    EXPECT_EQ(callError("Short", bad), kTypeMismatch) << toUtf8(bad);
  }
  EXPECT_EQ(subject->call("Short", u"  -12 "), Value(Short{-12}));
}

TEST_F(Automation, VariablesTakeTheResult) {
  // One that can hold anything takes the type that the member gives.
  const auto call = [&](const char* member, auto variable) { return subject->call(member, variable), variable; };
  for (const Value& before : {Value(), Value(Text(u"1")), Value(1.0), Value(true)}) {
    EXPECT_EQ(call("Short", before), Value(Short{300})) << "from kind " << before.index();
    EXPECT_EQ(call("Text", before), Value(Text(u"12,5"))) << "from kind " << before.index();
  }
  // A typed one of the member's own type is used in place. Another takes the result converted, and the nearest where
  // it does not fit.
  EXPECT_EQ(call("Short", Short{1}), 300);
  EXPECT_EQ(call("Real", Text(u"1")), u"2.5");
  EXPECT_EQ(call("Short", Byte{1}), 255);
  EXPECT_EQ(call("Long", Short{1}), 32767);
  EXPECT_EQ(call("Real", Short{1}), 2);
  EXPECT_EQ(call("Bool", Short{0}), -1);
  EXPECT_EQ(call("Short", false), true);
}

TEST_F(Automation, AnObjectStandsForItsDefaultMemberAndIsNeverWrittenOver) {
  const Value date = Date{46000.5, u"9/12/2025"};
  const struct {
    const char* member;
    Value value, seen;
  } cases[] = {{"Real", Text(u"2,5"), 2.5},
               {"Text", 2.5, Text(u"2.5")},
               {"Text", date, Text(u"9/12/2025")},
               {"Real", date, 46000.5}};
  for (const auto& row : cases) {
    const auto field = std::make_shared<Field>(row.value);
    ObjectPtr typed = field;
    Value any = typed;
    EXPECT_EQ(subject->call(row.member, Value(typed)), row.seen);
    EXPECT_EQ(subject->call(row.member, typed), row.seen);
    EXPECT_EQ(subject->call(row.member, any), row.seen);
    EXPECT_EQ(field->reads, 3);
    EXPECT_EQ(std::pair(typed, any), std::pair(ObjectPtr(field), Value(ObjectPtr(field))));
  }
  const auto nested = std::make_shared<Field>(Value(ObjectPtr(std::make_shared<Field>(Value(1.0)))));
  EXPECT_EQ(callError("Real", Value(ObjectPtr(nested))), kTypeMismatch);
}

TEST_F(Automation, AVariableThatCannotTakeTheResultIsRefusedBeforeTheMemberRuns) {
  Short number = 7;
  Text word = u"word";
  ObjectPtr object = subject;
  EXPECT_EQ(callError("Text", number), kTypeMismatch);
  EXPECT_EQ(callError("Text", object), kTypeMismatch);
  EXPECT_EQ(callError("Short", object), kTypeMismatch);
  EXPECT_EQ(callError("Short", word), kTypeMismatch);
  EXPECT_EQ(subject->runs, 0);
  EXPECT_EQ(std::tuple(number, word, object), std::tuple(7, u"word", ObjectPtr(subject)));
}

TEST_F(Automation, WhatAVariableHeldDoesNotMatterWhereItOnlyTakesAResult) {
  for (const Value& before : {Value(), Value(Null()), Value(Text(u"abc")), Value(1e9), Value(Date{1, u"d"})}) {
    SCOPED_TRACE(before.index());
    Value result = before, text = before;
    subject->call("tell", result, text, u"");
    EXPECT_EQ(std::pair(result, text), std::pair(Value(Short{5}), Value(Text(u"told"))));
  }
  for (const bool tells : {true, false}) {
    subject->tells = tells;
    Long wide = 100000;
    Value any = Null();
    Text text = u"before";
    subject->call("tell", wide, text, u"");
    subject->call("tell", any, text, u"");
    EXPECT_EQ(std::tuple(wide, any, text), tells ? std::tuple(5, Value(Short{5}), Text(u"told"))
                                                 : std::tuple(100000, Value(Null()), Text(u"before")));
  }
}

TEST_F(Automation, OfOneVariableGivenTwiceTheResultStays) {
  Short result = 0;
  Value any;
  Text typed;
  subject->call("tell", result, any, any);
  subject->call("tell", result, typed, typed);
  EXPECT_EQ(std::pair(any, typed), std::pair(Value(Text(u"told")), Text(u"told")));
  Value number = Short{1};
  subject->call("tell", number, number, u"");
  EXPECT_EQ(number, Value(Text(u"told"))) << "of two results the latter";
}

TEST_F(Automation, RecordsOfTheWrongClassAreRefused) {
  EXPECT_EQ(subject->call("record", *std::make_shared<clsStatus>()), Value(Short{0}));
  for (Value wrong : {Value(createObject("clsAccumulator")), Value(ObjectPtr()), Value(), Value(Text(u"3"))}) {
    EXPECT_EQ(callError("record", wrong), kTypeMismatch) << wrong.index();
  }
  EXPECT_EQ(subject->runs, 1);
}

TEST_F(Automation, CountsAndOptions) {
  EXPECT_EQ(subject->call("options", 3), Value(Text(u"3 4  yes")));
  EXPECT_EQ(subject->call("options", 3, 8, u"x", false), Value(Text(u"3 8 x no")));
  const Argument gap[] = {Argument(Value(Short{3})), Argument(), Argument(Value(Text(u"t")))};
  EXPECT_EQ(subject->invoke("options", ClassInfo::Access::call, gap), Value(Text(u"3 4 t yes")));
  EXPECT_EQ(callError("options"), 0x8002000E);
  EXPECT_EQ(callError("options", 3, 3, u"x", true, 3), 0x8002000E);
  EXPECT_EQ(errorOf([] { createObject("cTCPIP")->call("RemotePort", 3); }), kMemberNotFound) << "it can only be set";
  EXPECT_EQ(subject->call("OPTIONS", 3), subject->call("options", 3));
  const Argument none[] = {Argument()};
  EXPECT_NE(errorOf([&] { subject->invoke("Short", ClassInfo::Access::call, none); }), 0u);
  EXPECT_EQ(subject->runs, 0);
  try {
    subject->call("options", 3, u"4", u"t", u"maybe");
    ADD_FAILURE() << "no error";
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.argument(), 3);
  }
}

}  // namespace
}  // namespace mirvane::test
