#include "facade/fiscal_trevik_module.h"
#include "interface/members.h"
#include "interface/send_by_name.h"
#include "link/port.h"
#include "session/session.h"
#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

// The example of docs/add-a-driver.md: a family with command words of its own on the same wire.
struct FiscalVarlenModule : ObjectOf<FiscalVarlenModule> {
  static constexpr std::string_view kName = "FiscalVarlenModule";
  static const ClassInfo& describe();
  static ObjectPtr create() { return std::make_shared<FiscalVarlenModule>(); }

  Reply connect(const Text& port);

  Session session{kWords};
  static constexpr Words kWords{[](TextView command) -> std::optional<Word> {
                                  const bool asks = command == u"M/" || command == u"B/";
                                  return Word{.asks = asks, .pays = command.starts_with(u"T/")};
                                },
                                u"B/", u""};
};

Reply FiscalVarlenModule::connect(const Text& port) {
  Reply opened = openPort(port);
  if (!opened.succeeded()) return opened;
  const Reply model = session.exchange(u"M/", OwnOutcome());
  if (model.succeeded() && model.count() > 0 && model.text(0) == u"VARLEN 1") return {};
  closePort();
  return {link_result::kNoAnswer, link_result::kNoAnswerText};
}

const ClassInfo& FiscalVarlenModule::describe() {
  static const ClassInfo info = [] {
    using namespace contract;
    using Self = FiscalVarlenModule;
    static constexpr auto kSend = method<Text(Text&, Outcome, Text&)>("Send_", {"CmdString", "Pass"});
    ClassBuilder<Self> rows;
    rows.implement<Connect_>([](Self& self, const Text& PORT, Outcome outcome) { outcome.set(self.connect(PORT)); })
        .implement<DisConnect_>([](Self&, Text&, Outcome outcome) { outcome.Result = closePort(); })
        .implement<ItemSale>([](Self& self, Text& itemDesc, Real& itemQuan, Real& itemUnitPrice, Real&,
                                Integer& itemDep, Outcome outcome, Text&, Integer&) {
          Command command(u"I/");
          command.integer(itemDep).text(itemDesc, 20).quantity(itemQuan).amount(itemUnitPrice);
          self.session.send(command, outcome);
        })
        .implement<DriverPayment>([](Self& self, Integer& paymentNumber, Text&, Real& paymentAmount, Integer&, Integer&,
                                     Outcome outcome, Text&, bool&, bool&) {
          self.session.send(Command(u"T/").integer(paymentNumber).amount(paymentAmount), outcome);
        })
        .implement<SendCommand_>(
            [](Self& self, Text& command, Outcome outcome, Text&) { self.session.send(command, outcome); })
        .implement<lastReply>([](Self& self) { return self.session.lastReply(); })
        .implement<isErrorFixable>([](Self&, Integer& iErr) { return Reply(iErr, {}).is(DeviceCode::kBusy); })
        .implement<kSend>([](Self& self, Text& command, Outcome outcome, Text&) {
          outcome.set(self.session.exchange(command, outcome));
          return self.session.lastReply();
        });
    return rows.build();
  }();
  return info;
}

class SecondDriver : public ComponentTest {
 protected:
  SecondDriver() {
    moduleState().candidates.insert(moduleState().candidates.begin(),
                                    {FISCAL_VARLENFISCAL, FiscalVarlenModule::kName, &FiscalVarlenModule::create});
  }
  std::vector<std::string> connectAndSell(const Text& port) {
    device.commands.clear();
    run(*facade, "Connect_", port);
    run(*facade, "ItemSale", u"Καφές", 2.0, 1.25, 24.0, 3);
    return device.commands;
  }

  std::shared_ptr<fiscalTrevikModule> facade = std::make_shared<fiscalTrevikModule>();
};

TEST_F(SecondDriver, SellsWaitsAndIsPaid) {
  const std::string sale = "I/3/Καφες/2.000/1.25/", busy = "0E/00/00/", ok = "00/00/00/", mine = ok + "VARLEN 1/";
  device.answer(mine).answer(mine).answer(busy).answer(busy).answer(ok);
  screen.expectsWaits = true;
  EXPECT_THAT(connectAndSell(u"COM1"), ElementsAre("M/", "M/", sale, "B/", "B/", sale));
  EXPECT_EQ(outcome(), "0 " + ok);
  EXPECT_EQ(facade->call("getFiscalType"), Value(Long{FISCAL_VARLENFISCAL}));
  run(*facade, "Payment", 1, u"CASH", 5.0, 0, 0);
  EXPECT_EQ(device.commands.back(), "T/1/5.00/");
  device.answer(ok + "17/");
  EXPECT_EQ(askCurrentDriver(u"N/").number(0), 17);
  EXPECT_EQ(errorOf([&] { run(*facade, "issueZReport"); }), kMemberNotFound);
  run(*facade, "DisConnect_", u"COM1");
  EXPECT_EQ(Result, 1);
}

TEST_F(SecondDriver, LeavesADeviceThatIsNotItsOwnToTheNext) {
  const std::string sale = "3/S//Καφες///2.000/1.25/3/24.00/1/";
  device.answer("06/00/00/");
  EXPECT_THAT(connectAndSell(u"COM1"), ElementsAre("M/", sale));
  EXPECT_EQ(facade->call("getFiscalType"), Value(Long{FISCAL_VARLENFISCAL2}));
  run(*facade, "DisConnect_", u"COM1");
  device.silence(4);
  EXPECT_THAT(connectAndSell(u"10.0.0.5:9100"), ElementsAre("M/", "M/", "M/", "M/", sale));
  run(*facade, "DisConnect_", u"");
  EXPECT_THAT(connectAndSell(u"COM7"), IsEmpty());
  EXPECT_EQ(outcome(), "100 " + kWrongDevice);
}

}  // namespace
}  // namespace mirvane::test
