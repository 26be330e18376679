#include "facade/fiscal_null_module.h"
#include "tests/fakes/component_test.h"
#include "text/code_page.h"

namespace mirvane::test {
namespace {

class NullDriver : public ComponentTest {
 protected:
  std::shared_ptr<fiscalNullModule> driver = std::make_shared<fiscalNullModule>();
};

Text told(const Value& value) { return std::holds_alternative<ObjectPtr>(value) ? u"record" : convertTo<Text>(value); }

TEST_F(NullDriver, RefusesEveryOperationAlikeAndChangesNothingElse) {
  std::size_t operations = 0;
  for (const Member& member : driver->classInfo().members()) {
    SCOPED_TRACE(std::string(member.name));
    const auto found = std::ranges::find(member.parameters, "Result", &Parameter::name);
    if (found == member.parameters.end() || member.name == "DisConnect_") continue;
    ++operations;
    std::vector<Value> expected;
    for (const Parameter& parameter : member.parameters) {
      const auto [kind, className] = parameter.type;
      expected.push_back(kind == TypeKind::boolean ? Value(true) : Value(Short{7}));
      if (kind == TypeKind::object) expected.back() = Value(createObject(className));
    }
    std::vector<Value> variables = expected;
    std::vector<Argument> arguments;
    for (Value& variable : variables) arguments.emplace_back(Reference(&variable));
    const auto at = static_cast<std::size_t>(found - member.parameters.begin());
    expected[at] = Short{100}, expected[at + 1] = fromUtf8(kWrongDevice);
    for (const bool suppress : {true, false}) {
      screen.boxes.clear();
      variables[at + 2] = expected[at + 2] = suppress;
      EXPECT_EQ(driver->invoke(member.name, ClassInfo::Access::call, arguments), Value());
      for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(told(variables[i]), told(expected[i])) << i;
      EXPECT_EQ(screen.boxes, suppress ? std::vector<Box>{} : std::vector(1, Box{kWrongDevice, 4160, "Τίτλος"}));
    }
  }
  EXPECT_EQ(operations, 46u);
  EXPECT_THAT(serial.sent, IsEmpty());
}

TEST_F(NullDriver, LeavesNoEarlierFiguresInTheRecords) {
  for (const auto& [member, record] :
       {std::pair("transactionTotals", "clsTransTotal"), std::pair("getDailyTotals", "clsDailyAcc"),
        std::pair("getSalesPerDepartment", "clsAccumulator"), std::pair("getSalesPerCategory", "clsAccumulator")}) {
    const ObjectPtr figures = createObject(record);
    for (const Member& row : figures->classInfo().members()) {
      if (row.kind == MemberKind::put) put(*figures, row.name, Short{5});
    }
    Value variable = figures;
    run(*driver, member, variable);
    for (const Member& row : figures->classInfo().members()) {
      if (row.kind != MemberKind::get) continue;
      const Text expected = row.name == "Id" ? u"5" : row.result.kind == TypeKind::text ? u"" : u"0";
      EXPECT_EQ(convertTo<Text>(figures->call(row.name)), expected) << member << " " << row.name;
    }
  }
}

TEST_F(NullDriver, StatusIsOneObjectThatIsSetAnewOnEveryRead) {
  const auto status = statusOf(*driver);
  for (const Member& flag : status->classInfo().members()) {
    if (flag.kind != MemberKind::get || flag.result.kind != TypeKind::boolean) continue;
    put(*status, flag.name, flag.name != "isEuro");
    EXPECT_EQ(statusOf(*driver), status);
    EXPECT_EQ(status->call(flag.name), Value(flag.name == "isEuro")) << flag.name;
  }
}

TEST_F(NullDriver, EveryErrorIsCriticalAndNoneCanBeMended) {
  for (const char* question : {"bFixableError", "isErrorFixable", "bShouldRetry", "isCriticalError"}) {
    EXPECT_EQ(driver->call(question, 14), Value(question == std::string("isCriticalError"))) << question;
  }
}

}  // namespace
}  // namespace mirvane::test
