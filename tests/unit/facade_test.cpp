#include "interface/cls_eft.h"
#include "interface/driver_interface.h"
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
    static const auto info = ClassBuilder<Substitute>().implement(contract::Connect_, &Substitute::Connect_).build();
    return info;
  }
  static ObjectPtr create() { return std::make_shared<Substitute>(); }

  void Connect_(Text PORT, Short& Result, Text& Exresult, bool& SupressError_) {
    drivers.log.push_back(std::to_string(kNumber) + " " + toUtf8(PORT) + " " + std::to_string(Result) +
                          (SupressError_ ? " silent" : " loud"));
    if (drivers.results.contains(kNumber)) Result = drivers.results.at(kNumber);
    Exresult = u"from the driver";
  }
};

/// A driver that notes what it is asked, and writes something to every argument.
struct Recorder : ObjectOf<Recorder> {
  static constexpr std::string_view kName = "Recorder";
  static inline std::string asked;

  template <class T>
  static void take(T& argument) {
    if constexpr (std::derived_from<T, Object>) {
      asked += " record";
    } else {
      asked += " " + toUtf8(convertTo<Text>(Value(argument)));
      argument = convertTo<T>(Value(Short{41}));
    }
  }
  template <class R, class... A>
  static void add(ClassBuilder<Recorder>& table, const Contract<R(A...)>& member) {
    table.implement(member, [name = member.name](Recorder& /*self*/, A... arguments) -> R {
      asked = name;
      (take(arguments), ...);
      if constexpr (!std::is_void_v<R>) return convertTo<R>(Value(Short{12}));
    });
  }
  static const ClassInfo& describe() {
    static const ClassInfo info = [] {
      ClassBuilder<Recorder> table;
      const auto addAll = [&table](const auto&... members) { (add(table, members), ...); };
      addAll(contract::ItemSale, contract::DriverPayment, contract::setServer, contract::getServer, contract::eftWrite,
             contract::setDepartment);
      return table.build();
    }();
    return info;
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

  std::shared_ptr<fiscalTrevikModule> facade = std::make_shared<fiscalTrevikModule>();
};

TEST_F(Facade, ProbesInOrderWithoutAWord) {
  const std::string n = " COM5 0 silent", last = " COM5 77 loud";
  const std::tuple<std::map<int, Short>, std::vector<std::string>, Long, Short> cases[] = {
      {{{1, -1}, {2, -2}, {3, -3}}, {"1" + n, "2" + n, "3" + n}, FISCAL_unknown, 100},
      {{{1, 0}, {2, 0}, {3, 0}}, {"1" + n, "1" + last}, FISCAL_PALKOFISCAL, 0},
      {{{1, -207}, {2, 5}, {3, 0}}, {"1" + n, "2" + n, "2" + last}, FISCAL_VARLENFISCAL, 5},
      {{{1, -1}, {2, -1}}, {"1" + n, "2" + n, "3" + n, "3" + last}, FISCAL_VARLENFISCAL2, 77}};
  SupressError_ = false;
  for (const auto& [results, log, type, result] : cases) {
    substitute(results);
    screen.boxes.clear();
    const int before = Object::liveCount();
    run(*facade, "Connect_", u"COM5");
    EXPECT_EQ(Result, result);
    EXPECT_EQ(drivers.log, log);
    EXPECT_EQ(facade->call("getFiscalType"), Value(type));
    EXPECT_EQ(exresult(), type == FISCAL_unknown ? kWrongDevice : "from the driver");
    EXPECT_EQ(screen.boxes.size(), type == FISCAL_unknown ? 1u : 0u);
    EXPECT_EQ(Object::liveCount(), before + 1) << "only the selected driver lives";
    releaseDriver();
  }
}

TEST_F(Facade, ForwardsWithTheCallersOwnVariables) {
  const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
      {"ItemSale", "A 2.5 1 24 3 5 t 0 c", "ItemSale A 2.5 1 24 3 5 t False c 1", "41 41 41 41 41 41 41 True 41 12"},
      {"Payment", "1 A 2.5 3 4 5 t 0", "Payment 1 A 2.5 3 4 5 t False  True False", "41 41 41 41 41 41 41 True 12"},
      {"setServerSettings", "1 w p k 5 t 0 pw", "setServer 1 w p k 5 t False pw", "1 w p k 41 41 True 41 "},
      {"getServerSettings", "1 w p k 5 t 0 pw", "getServer 1 w p k 5 t False pw", "41 41 41 41 41 41 True 41 "},
      {"eftSet", "record 5 t 0", "eftWrite record 5 t False", "record 41 41 True "},
      {"setDepartment", "1 x 2 5 t 0", "", "1 x 2 5 t False "}};
  moduleState().currentDriver = std::make_shared<Recorder>();
  const Value record = ObjectPtr(std::make_shared<clsEFT>());
  for (const auto& [member, given, asked, after] : cases) {
    SCOPED_TRACE(given);
    Recorder::asked.clear();
    std::vector<Value> variables;
    for (const Text& word : split(fromUtf8(given), u' ')) {
      variables.push_back(word == u"record" ? record : Value(word));
    }
    std::vector<Argument> arguments;
    for (Value& variable : variables) arguments.emplace_back(Reference(&variable));
    const Text result = convertTo<Text>(facade->invoke(member, ClassInfo::Access::callOrRead, arguments));
    EXPECT_EQ(Recorder::asked, asked);
    std::string left;
    for (const Value& variable : variables)
      left += toUtf8(variable == record ? u"record" : convertTo<Text>(variable)) + " ";
    EXPECT_EQ(left + toUtf8(result), after) << "the variables, and the result";
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
