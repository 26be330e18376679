#include "facade/fiscal_trevik_module.h"
#include "interface/members.h"
#include "tests/fakes/component_test.h"
#include "text/code_page.h"

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
    static const auto info =
        ClassBuilder<Substitute>().template implement<contract::Connect_>(&Substitute::Connect_).build();
    return info;
  }
  static ObjectPtr create() { return std::make_shared<Substitute>(); }

  void Connect_(Text PORT, Outcome outcome) {
    drivers.log.push_back(std::to_string(kNumber) + " " + toUtf8(PORT) + " " + std::to_string(outcome.Result) +
                          (outcome.SupressError_ ? " silent" : " loud"));
    if (drivers.results.contains(kNumber)) outcome.Result = drivers.results.at(kNumber);
    outcome.Exresult = u"from the driver";
  }
};

class Facade : public ComponentTest {
 protected:
  std::shared_ptr<fiscalTrevikModule> facade = std::make_shared<fiscalTrevikModule>();
};

TEST_F(Facade, ProbesInOrderWithoutAWord) {
  const std::string n = " COM5 0 silent", last = " COM5 77 loud";
  const std::tuple<std::map<int, Short>, std::vector<std::string>, Long, Short> cases[] = {
      {{{1, -1}, {2, -2}, {3, -3}}, {"1" + n, "2" + n, "3" + n}, FISCAL_unknown, 100},
      {{{1, 0}, {2, 0}, {3, 0}}, {"1" + n, "1" + last}, FISCAL_PALKOFISCAL, 0},
      {{{1, -207}, {2, 5}, {3, 0}}, {"1" + n, "2" + n, "2" + last}, FISCAL_VARLENFISCAL, 5},
      {{{1, -1}, {2, -1}}, {"1" + n, "2" + n, "3" + n, "3" + last}, FISCAL_VARLENFISCAL2, 77}};
  moduleState().candidates = {{FISCAL_PALKOFISCAL, "One", &Substitute<1>::create},
                              {FISCAL_VARLENFISCAL, "Two", &Substitute<2>::create},
                              {FISCAL_VARLENFISCAL2, "Three", &Substitute<3>::create}};
  SupressError_ = false;
  for (const auto& [results, log, type, result] : cases) {
    drivers.log.clear();
    drivers.results = results;
    screen.boxes.clear();
    const int before = Object::liveCount();
    run(*facade, "Connect_", u"COM5");
    EXPECT_EQ(drivers.log, log);
    EXPECT_EQ(facade->call("getFiscalType"), Value(type));
    EXPECT_EQ(outcome(), std::to_string(result) + " " + (result == 100 ? kWrongDevice : "from the driver"));
    EXPECT_EQ(screen.boxes.size(), type == FISCAL_unknown ? 1u : 0u);
    EXPECT_EQ(Object::liveCount(), before + 1) << "only the selected driver lives";
    releaseDriver();
  }
}

TEST_F(Facade, SetDepartmentLeavesTheVariablesAsTheyAre) {
  std::vector<Value> variables = {Long{5}, Value(), 7.5, Value(), Short{3}, Value()};
  const std::vector<Value> before = variables;
  std::vector<Argument> arguments;
  for (Value& variable : variables) arguments.emplace_back(Reference(&variable));
  EXPECT_EQ(facade->invoke("setDepartment", ClassInfo::Access::call, arguments), Value());
  EXPECT_EQ(variables, before);
}

TEST_F(Facade, ARecordThatIsNothingIsRefusedByTheDriverThereIs) {
  for (const bool isConnected : {false, true}) {
    if (isConnected) run(*facade, "Connect_", u"COM1");
    const auto sent = serial.sent.size();
    int reads = 0;
    for (const Member& member : facade->classInfo().members()) {
      if (member.parameters.empty() || member.parameters[0].type.kind != TypeKind::object) continue;
      if (member.name == "eftdel") continue;  // not of every driver
      ++reads;
      const auto error = errorOf([&] { run(*facade, member.name, ObjectPtr()); });
      EXPECT_EQ(error, isConnected ? kTypeMismatch : 0) << member.name;
      EXPECT_EQ(outcome(), isConnected ? "77 before" : "100 " + kWrongDevice) << member.name;
    }
    EXPECT_EQ(reads, 9);
    EXPECT_EQ(serial.sent.size(), sent);
    releaseDriver();
  }
}

TEST_F(Facade, DisconnectingReleasesTheDriverAndKeepsTheType) {
  run(*facade, "Connect_", u"COM1");
  run(*facade, "DisConnect_", u"COM1");
  EXPECT_EQ(Result, 1);
  EXPECT_EQ(moduleState().currentDriver, nullptr);
  EXPECT_EQ(facade->call("getFiscalType"), Value(Long{3}));
}

}  // namespace
}  // namespace mirvane::test
