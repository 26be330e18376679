#include "interface/cls_eft.h"
#include "interface/fiscal_null_module.h"
#include "interface/fiscal_trevik_module.h"
#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

/// What the substitute drivers were asked, and what they answer.
struct {
  std::vector<std::string> log;
  std::map<int, Short> results;  ///< of Connect_; a driver without one leaves Result alone
} drivers;

template <int kNumber>
struct Substitute : ObjectOf<Substitute<kNumber>> {
  static constexpr std::string_view kName = "Substitute";
  static const ClassInfo& describe() {
    static const ClassInfo info =
        ClassBuilder<Substitute>()
            .method("Connect_", &Substitute::Connect_, {"PORT", "Result", "Exresult", "SupressError_"})
            .method("DisConnect_", &Substitute::DisConnect_, {"PORT", "Result", "Exresult", "SupressError_"})
            .build();
    return info;
  }
  static ObjectPtr create() { return std::make_shared<Substitute>(); }

  void Connect_(Text& PORT, Short& Result, Text& Exresult, bool& SupressError_) {
    drivers.log.push_back(std::to_string(kNumber) + " " + toUtf8(PORT) + " " + std::to_string(Result) +
                          (SupressError_ ? " silent" : " loud"));
    if (drivers.results.contains(kNumber)) Result = drivers.results.at(kNumber);
    Exresult = u"from the driver";
  }
  Value DisConnect_(Text& PORT, Short& Result, Text& /*Exresult*/, bool& /*SupressError_*/) {
    drivers.log.push_back(std::to_string(kNumber) + " bye " + toUtf8(PORT));
    Result = 1;
    return Text(u"returned");
  }
};

class Facade : public ComponentTest {
 protected:
  void substitute(const std::map<int, Short>& results) {
    drivers.log.clear();
    drivers.results = results;
    moduleState().candidates = {{FISCAL_PALKOFISCAL, "One", &Substitute<1>::create},
                                {FISCAL_VARLENFISCAL, "Two", &Substitute<2>::create},
                                {FISCAL_VARLENFISCAL2, "Three", &Substitute<3>::create}};
  }
  Long fiscalType() { return std::get<Long>(facade->call("getFiscalType")); }
  static bool isNullDriver(const ObjectPtr& driver) {
    return driver != nullptr && driver->classInfo().name() == "fiscalNullModule";
  }

  std::shared_ptr<fiscalTrevikModule> facade = std::make_shared<fiscalTrevikModule>();
};

TEST_F(Facade, ProbesInOrderWithoutAWord) {
  struct Case {
    std::map<int, Short> results;
    std::vector<std::string> log;
    Long type;
    Short result;
  };
  const std::string n = " COM5 0 silent", last = " COM5 77 loud";
  const Case cases[] = {{{{1, -1}, {2, -2}, {3, -3}}, {"1" + n, "2" + n, "3" + n}, FISCAL_unknown, 100},
                        {{{1, 0}, {2, 0}, {3, 0}}, {"1" + n, "1" + last}, FISCAL_PALKOFISCAL, 0},
                        {{{1, -207}, {2, 5}, {3, 0}}, {"1" + n, "2" + n, "2" + last}, FISCAL_VARLENFISCAL, 5},
                        {{{1, -1}, {2, -1}}, {"1" + n, "2" + n, "3" + n, "3" + last}, FISCAL_VARLENFISCAL2, 77}};
  SupressError_ = false;
  for (const auto& [results, log, type, result] : cases) {
    substitute(results);
    screen.boxes.clear();
    const int before = Object::liveCount();
    run(*facade, "Connect_", u"COM5");
    EXPECT_EQ(drivers.log, log);
    EXPECT_EQ(fiscalType(), type);
    EXPECT_EQ(Result, result);
    EXPECT_EQ(exresult(), type == FISCAL_unknown ? kWrongDevice : "from the driver");
    EXPECT_EQ(screen.boxes.size(), type == FISCAL_unknown ? 1u : 0u);
    EXPECT_EQ(Object::liveCount(), before + 1) << "only the selected driver lives";
    releaseDriver();
  }
}

TEST_F(Facade, FindsTheDeviceBehindFamiliesThatAreNotPresent) {
  ASSERT_EQ(moduleState().candidates.size(), 3u);
  run(*facade, "Connect_", u"COM1");
  EXPECT_EQ(Result, 0);
  EXPECT_EQ(fiscalType(), FISCAL_VARLENFISCAL2);
  EXPECT_EQ(facade->call("logoLineDescLength"), Value(Short{48}));
  const auto status = std::dynamic_pointer_cast<clsStatus>(std::get<ObjectPtr>(facade->call("StatusRead")));
  ASSERT_NE(status, nullptr);
  EXPECT_EQ(status->FiscalType, 3);
}

TEST_F(Facade, APortThatDoesNotExistAnswers100AndTheNullDriverStays) {
  for (const TextView port : {u"", u"COM7"}) {
    run(*facade, "Connect_", port);
    EXPECT_EQ(Result, 100);
    EXPECT_EQ(exresult(), kWrongDevice);
    EXPECT_EQ(fiscalType(), 0);
    run(*facade, "Connect_", u"COM1");
    EXPECT_EQ(Result, 100) << "the null driver is current";
    run(*facade, "DisConnect_", port);
    EXPECT_EQ(Result, 0);
    EXPECT_EQ(moduleState().currentDriver, nullptr);
  }
  run(*facade, "Connect_", u"COM1");
  EXPECT_EQ(Result, 0);
}

TEST_F(Facade, WhatSelectsADriverAndWhatDoesNot) {
  clsStatus* const fresh = dynamic_cast<clsStatus*>(std::get<ObjectPtr>(facade->call("StatusRead")).get());
  EXPECT_NE(fresh, nullptr);
  EXPECT_NE(facade->call("StatusRead"), facade->call("StatusRead"));
  EXPECT_EQ(fiscalType(), 0);
  facade->call("clsEFTpos");
  run(*facade, "setDepartment", 1, u"x", 2);
  EXPECT_EQ(moduleState().currentDriver, nullptr);
  EXPECT_EQ(facade->call("logoLineDescLength"), Value(Short{0}));
  EXPECT_TRUE(isNullDriver(moduleState().currentDriver));
  releaseDriver();
  run(*facade, "issueXReport");
  EXPECT_EQ(Result, 100);
  run(*facade, "Connect_", u"COM1");
  EXPECT_EQ(Result, 100) << "an earlier call made the null driver current";
  run(*facade, "DisConnect_", u"");
  run(*facade, "Connect_", u"COM1");
  EXPECT_EQ(Result, 0);
}

TEST_F(Facade, DisconnectReleasesTheDriverAndKeepsTheType) {
  substitute({{1, -1}, {2, 0}});
  EXPECT_EQ(run(*facade, "DisConnect_", u"COM5"), Value(Text(u"returned")));
  EXPECT_THAT(drivers.log, ElementsAre("1 COM5 0 silent", "2 COM5 0 silent", "2 bye COM5")) << "no driver: it probes";
  EXPECT_EQ(Result, 1);
  EXPECT_EQ(moduleState().currentDriver, nullptr);
  EXPECT_EQ(fiscalType(), FISCAL_VARLENFISCAL);
}

TEST_F(Facade, DestroyingOneFacadeReleasesTheDriverOfAll) {
  auto other = std::make_shared<fiscalTrevikModule>();
  run(*facade, "Connect_", u"COM1");
  run(*other, "ItemSale", u"A", 1.0, 1.0, 24.0, 1);
  EXPECT_EQ(Result, 0);
  other.reset();
  EXPECT_EQ(moduleState().currentDriver, nullptr);
  run(*facade, "ItemSale", u"A", 1.0, 1.0, 24.0, 1);
  EXPECT_EQ(Result, 100);
}

TEST_F(Facade, OwnMembers) {
  Short department = 5, category = 6;
  Text description = u"d/ά";
  run(*facade, "Connect_", u"COM1");
  SupressError_ = false;
  EXPECT_EQ(run(*facade, "setDepartment", department, description, category), Value());
  EXPECT_EQ(std::tuple(department, description, category, Result, Exresult, SupressError_),
            std::tuple(5, u"d/ά", 6, 77, u"before", false));
  EXPECT_THAT(serial.sent, IsEmpty());

  const auto other = std::make_shared<fiscalTrevikModule>();
  EXPECT_EQ(facade->call("clsEFTpos"), facade->call("clsEFTpos"));
  EXPECT_NE(facade->call("clsEFTpos"), other->call("clsEFTpos"));
  for (const char* classifier : {"bFixableError", "isErrorFixable", "bShouldRetry", "isCriticalError"}) {
    EXPECT_EQ(errorOf([&] { facade->call(classifier, 14); }), kMemberNotFound) << classifier;
  }
}

TEST_F(Facade, MembersThatTheNullDriverLacksRaiseAnErrorAndTouchNothing) {
  auto terminal = std::make_shared<clsEFT>();
  EXPECT_EQ(errorOf([&] { run(*facade, "eftdel", *terminal); }), kMemberNotFound);
  EXPECT_EQ(errorOf([&] { facade->call("adjustment", true); }), kMemberNotFound);
  EXPECT_EQ(errorOf([&] { facade->call("setTaxCardNumber", u"1", Result, Exresult, SupressError_, Pass); }),
            kMemberNotFound);
  EXPECT_EQ(errorOf([&] { run(*facade, "Payment", 1, u"CASH", 1.0, 0, 0); }), kBadCount);
  EXPECT_EQ(Result, 77);
  EXPECT_EQ(exresult(), "before");
  EXPECT_TRUE(isNullDriver(moduleState().currentDriver));
}

/// A driver with every member that the facade forwards. Each notes its name and writes something to every argument.
class Recorder : public Object {
 public:
  const ClassInfo& classInfo() const override {
    static const ClassInfo info("Recorder", rows());
    return info;
  }
  static std::string driverName(std::string_view facadeName) {
    if (facadeName == "eftSet") return "eftWrite";
    if (facadeName == "setServerSettings") return "setServer";
    if (facadeName == "getServerSettings") return "getServer";
    return std::string(facadeName);
  }
  static inline std::vector<std::string> called;

 private:
  static std::vector<Member> rows() {
    static std::deque<std::string> names;
    std::vector<Member> result;
    for (const Member& row : fiscalTrevikModule::describe().members()) {
      const std::string& name = names.emplace_back(driverName(row.name));
      Member copy = row;
      copy.name = name;
      copy.implementation = [name](Object& /*self*/, Arguments arguments, const Parameters& parameters) -> Value {
        called.push_back(name + " " + std::to_string(arguments.size()));
        for (std::size_t i = 0; i < arguments.size(); ++i) {
          EXPECT_FALSE(arguments[i].missing()) << name << " " << i;
          if (parameters[i].type.kind != TypeKind::object) arguments[i].store(sampleFor(parameters[i].type));
        }
        if (name == "logoLineDescLength") return Short{31};
        if (name == "adjustment") return ObjectPtr(std::make_shared<clsAdjust>());
        if (name == "StatusRead") return ObjectPtr(std::make_shared<clsStatus>());
        return Text(u"from the driver");
      };
      result.push_back(copy);
    }
    return result;
  }
};

TEST_F(Facade, ForwardsEveryMemberWithTheCallersOwnVariables) {
  for (const Member& member : fiscalTrevikModule::describe().members()) {
    const std::string name(member.name);
    if (name == "getFiscalType" || name == "setDepartment" || name == "clsEFTpos" || name.ends_with("Debug")) continue;
    SCOPED_TRACE(name);
    Recorder::called.clear();
    moduleState().currentDriver = std::make_shared<Recorder>();
    std::vector<Value> variables, expected;
    std::size_t required = 0;
    for (const Parameter& parameter : member.parameters) {
      const bool isRecord = parameter.type.kind == TypeKind::object;
      required += parameter.isOptional ? 0 : 1;
      variables.push_back(isRecord ? sampleFor(parameter.type) : Value());
      expected.push_back(isRecord ? variables.back() : parameter.byReference ? sampleFor(parameter.type) : Value());
    }
    std::vector<Argument> arguments;
    for (Value& variable : variables) arguments.emplace_back(Reference(&variable));
    const Value result = facade->invoke(name, ClassInfo::Access::callOrRead, arguments);
    EXPECT_EQ(variables, expected);
    const std::string call = Recorder::driverName(name) + " " + std::to_string(arguments.size());
    EXPECT_THAT(Recorder::called, ElementsAre(call));
    if (member.result.kind == TypeKind::variant) {
      EXPECT_EQ(result, Value(Text(u"from the driver")));
    } else if (member.result.kind == TypeKind::integer16) {
      EXPECT_EQ(result, Value(Short{31}));
    } else if (member.result.kind == TypeKind::object) {
      EXPECT_EQ(std::get<ObjectPtr>(result)->classInfo().name(), member.result.name);
    }
    if (name == "DisConnect_") moduleState().currentDriver = std::make_shared<Recorder>();
    arguments.resize(required);
    facade->invoke(name, ClassInfo::Access::callOrRead, arguments);
    EXPECT_THAT(Recorder::called, ElementsAre(call, call)) << "omitted options are passed on too";
  }
}

}  // namespace
}  // namespace mirvane::test
