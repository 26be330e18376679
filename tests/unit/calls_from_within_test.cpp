#include "facade/fiscal_trevik_module.h"
#include "interface/door.h"
#include "support/electronic_journal.h"
#include "support/price_adjustments.h"
#include "tests/fakes/component_test.h"
#include "text/code_page.h"

namespace mirvane::test {
namespace {

const std::string kBusy = "14 Απασχολημένο σε άλλη λειτουργία";

/// A program whose timers and windows call the component while a call of its own is inside.
class CallsFromWithin : public DriverTest {
 protected:
  CallsFromWithin() {
    called = facade;
    screen.expectsWaits = true;
    moduleState().fiscalType = FISCAL_VARLENFISCAL2;
  }

  /// The program does this once, at the next moment at which it runs.
  void onceWithin(std::function<void()> action) {
    screen.program = [this, action = std::move(action)] {
      screen.program = nullptr;
      action();
      ++runs;
    };
  }
  /// The outcome of a call with variables of its own.
  template <class... A>
  std::string outcomeOf(Object& object, std::string_view member, A&&... arguments) {
    Short result = 77;
    Text text = u"before";
    bool silent = false;
    object.call(member, std::forward<A>(arguments)..., result, text, silent);
    return std::to_string(result) + " " + toUtf8(text);
  }

  int runs = 0;
  std::shared_ptr<fiscalTrevikModule> facade = std::make_shared<fiscalTrevikModule>();
  const ObjectPtr adjustment = convertTo<ObjectPtr>(facade->call("adjustment", false));
  const ObjectPtr journal = std::make_shared<FiscalJournal>(), null = createObject("fiscalNullModule");
};

TEST_F(CallsFromWithin, EveryOperationIsRefusedAndTouchesNothingElse) {
  int refused = 0;
  for (const ObjectPtr& object : {ObjectPtr(facade), adjustment, journal, null}) {
    for (const Member& member : object->classInfo().members()) {
      const auto named = [&member](std::string_view name) {
        return static_cast<std::size_t>(std::ranges::find(member.parameters, name, &Parameter::name) -
                                        member.parameters.begin());
      };
      const std::size_t report = std::min(named("Result"), named("errorDesc"));
      const bool answers = object == facade && (member.name == "Connect_" || member.name == "setDepartment");
      if (report == member.parameters.size() || answers) continue;
      const bool isJournal = member.parameters[report].name == "errorDesc";
      SCOPED_TRACE(member.name);
      // What an empty variable becomes shows that it was written to.
      std::vector<Value> variables(member.parameters.size());
      for (std::size_t i = 0; i < variables.size(); ++i) {
        if (member.parameters[i].type.kind != TypeKind::object) continue;
        variables[i] = createObject(member.parameters[i].type.name);
      }
      std::vector<Value> expected = variables;
      expected[report] = isJournal ? Value(Text(u"14~" + fromUtf8(kBusy.substr(3)))) : Value(Short{14});
      if (!isJournal) expected[report + 1] = fromUtf8(kBusy.substr(3));
      std::vector<Argument> arguments;
      for (Value& variable : variables) arguments.emplace_back(Reference(&variable));
      Value returned;
      device.answer("19/00/00/").answer("00/00/00/");
      SupressError_ = false;
      onceWithin([&] {
        device.commands.clear();
        const std::size_t boxes = screen.boxes.size();
        returned = object->invoke(member.name, ClassInfo::Access::callOrRead, arguments);
        EXPECT_EQ(screen.boxes.size(), boxes);
        EXPECT_THAT(device.commands, IsEmpty());
      });
      EXPECT_THAT(call("DrawerOpen"), IsEmpty()) << "nothing behind the box";
      EXPECT_EQ(variables, expected);
      EXPECT_EQ(returned, isJournal ? Value(Long{14}) : Value());
      EXPECT_EQ(outcome(), "25 Printer paper end detected");
      device.script.clear();
      ++refused;
    }
  }
  EXPECT_EQ(runs, refused);
  EXPECT_GT(refused, 90);
}

// The outer call as it ends without the program, whatever the program calls meanwhile, with the outer call's variables.
TEST_F(CallsFromWithin, NoMomentLetsTheProgramIn) {
  struct Case {
    const char* what;
    std::function<void()> prepare, outer;
    Strings commands;
    std::string outcome;
  };
  const auto pay = [this] { call("Payment", 2, u"CARD", 10.0, 1, 1); };
  const auto sell = [this] { call("ItemSale", u"A", 1.0, 1.0, 24.0, 1); };
  const std::string item = "3/S//A///1.000/1.00/1/24.00/1/", card = "5/2/CARD//10.00/1/1/";
  const std::string silent = "0 00/00/00/";
  const Case cases[] = {
      {"a card payment",
       [this] { device.answer("9E/00/0E/").answer("9E/00/0E/").answer("9C/00/0E/"); },
       pay,
       {card, "?/", "?/"},
       "156 EFTPOS Payment Failed"},
      {"a box", [this] { device.answer("60/00/00/"); }, sell, {item}, "96 Price Error"},
      {"a busy register",
       [this] { device.answer("0E/00/00/").answer("0E/00/00/").answer("00/00/00/"); },
       sell,
       {item, "?/", "?/", item},
       silent},
      {"a silent register", [this] { device.silence(2); }, sell, {item, item, item}, silent},
      {"a network that is down",
       [this] {
         connectNetwork();
         sockets.failing = "send";
       },
       sell,
       {},
       "-3 H ταμειακή δεν Απαντά!"},
      {"a journal",
       [this] {
         sockets.failing.clear();
         run(*driver, "DisConnect_", u"");
         connect(u"COM1");
         device.answer("00/00/00/42/").answer("00/00/00/3//");
       },
       [this] { call("issueZReport"); },
       {"A/", "Q/", "x/2/2"},
       silent},
  };
  SupressError_ = false;
  for (const auto& [what, prepare, outer, commands, expected] : cases) {
    SCOPED_TRACE(what);
    device.script.clear();
    screen.program = nullptr;
    prepare();
    screen.program = [this] {
      ++runs;
      bool suppress = true;
      Text command = u"?/", pass;
      facade->call("SendCommand_", command, Result, Exresult, suppress, pass);
      EXPECT_EQ(outcome(), kBusy);
      facade->call("ItemSale", u"A", 1.0, 1.0, 24.0, 1, Result, Exresult, suppress);
      facade->call("DisConnect_", u"", Result, Exresult, suppress);
      facade->call("issueZReport", Result, Exresult, suppress);
      EXPECT_EQ(outcome(), kBusy);
    };
    const int before = runs;
    outer();
    EXPECT_GT(runs, before);
    EXPECT_TRUE(commands.empty() || device.commands == commands) << testing::PrintToString(device.commands);
    EXPECT_EQ(outcome(), expected);
  }
}

TEST_F(CallsFromWithin, ACallThatRaisesGivesBackWhatItsVariablesHeld) {
  Short result = 77;
  Text text = u"before";
  bool silent = false;
  device.silence(2).answer("00/00/00/");
  onceWithin([&] { facade->call("DrawerOpen", result, text, silent); });
  EXPECT_THROW(facade->call("issueZReport", result, text, silent), AutomationError) << "A/ told no number";
  EXPECT_EQ(runs, 1);
  EXPECT_EQ(std::to_string(result) + " " + toUtf8(text), "77 before");
}

TEST_F(CallsFromWithin, WhatTalksToNobodyWorks) {
  SupressError_ = false;
  device.answer("60/00/0E/");
  onceWithin([this] {
    EXPECT_EQ(outcomeOf(*facade, "Connect_", u"COM7"), "0 ") << "a port is open";
    EXPECT_EQ(facade->call("logoLineDescLength"), Value(Short{48}));
    EXPECT_TRUE(statusOf(*facade)->isTransactionOpen);
    EXPECT_NE(convertTo<ObjectPtr>(facade->call("adjustment", true)), nullptr);
    Text data = u"text", file = u"ABC123456780042_x";
    EXPECT_EQ(journal->call("eEJFileSave", file, data, Short{42}), Value(Long{0}));
    EXPECT_EQ(outcomeOf(*null, "Connect_", u"COM1"), kBusy) << "one of the program's own";
    Short result = 5;
    facade->call("setDepartment", 1, u"", 1, result, Exresult, SupressError_);
    EXPECT_EQ(result, 5);
    cTCPIP own;
    EXPECT_EQ(own.OpenConnection(0), 0);
    own.ShutdownConnection();
  });
  call("ItemSale", u"A", 1.0, 1.0, 24.0, 1);
  EXPECT_EQ(std::tuple(runs, outcome()), std::tuple(1, "96 Price Error"));
}

// Without a register, and while one is looked for.
TEST_F(CallsFromWithin, NoDriverIsChosenFromWithin) {
  run(*facade, "DisConnect_", u"");
  serial.ports.clear();
  SupressError_ = false;
  onceWithin([this] { EXPECT_EQ(outcomeOf(*facade, "Connect_", u"COM1"), kBusy); });
  call("Connect_", u"COM1");
  EXPECT_EQ(outcome(), "100 " + kWrongDevice);
  EXPECT_EQ(runs, 1);
}

TEST_F(CallsFromWithin, AFacadeThatEndsMeanwhileEndsNothing) {
  const auto payThrough = [this](const std::function<void()>& program) {
    device.script.clear();
    device.answer("9E/00/0E/").answer("9E/00/0E/").answer("00/00/0E/").answer("00/00/0E/0.00/");
    onceWithin(program);
    EXPECT_EQ(call("Payment", 2, u"CARD", 10.0, 1, 1).size(), 6u);
    EXPECT_EQ(Result, 0);
  };
  auto form = std::make_shared<fiscalTrevikModule>();
  moduleState().traceActive = true;
  payThrough([&form] { form = nullptr; });
  EXPECT_EQ(moduleState().currentDriver, nullptr) << "released when the payment is over";
  EXPECT_TRUE(moduleState().traceActive) << "one is left";
  moduleState().currentDriver = driver;
  form = std::make_shared<fiscalTrevikModule>();
  payThrough([this, &form] {
    form = nullptr;
    EXPECT_EQ(outcomeOf(*facade, "Connect_", u"COM1"), "0 ");
  });
  EXPECT_EQ(moduleState().currentDriver, driver) << "the program has connected again";
}

TEST_F(CallsFromWithin, ACallThatNeverReturnsIsForgotten) {
  struct Left {};
  SupressError_ = false;
  device.answer("0E/00/00/");
  moduleState().call = {};
  screen.program = [] { throw Left(); };
  EXPECT_THROW(call("DrawerOpen"), Left);
  screen.program = nullptr;
  EXPECT_THAT(call("DrawerOpen"), ElementsAre("p/1/"));
  // Its frame is gone, and nothing of it was undone.
  moduleState().call = {.isInside = true, .number = 7};
  EXPECT_EQ(outcomeOf(*facade, "DrawerOpen"), kBusy);
  forgetCall();
  EXPECT_EQ(outcomeOf(*facade, "DrawerOpen"), "0 00/00/00/");
}

}  // namespace
}  // namespace mirvane::test
