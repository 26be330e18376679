#include "interface/fiscal_null_module.h"
#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

const Box kRefusal{kWrongDevice, 4160, "Τίτλος"};

class NullDriver : public ComponentTest {
 protected:
  std::shared_ptr<fiscalNullModule> driver = std::make_shared<fiscalNullModule>();
};

TEST_F(NullDriver, RefusesEveryOperationAlikeAndChangesNothingElse) {
  int operations = 0;
  for (const Member& member : driver->classInfo().members()) {
    const auto at = std::ranges::find(member.parameters, "Result", &Parameter::name) - member.parameters.begin();
    if (at == std::ssize(member.parameters) || member.name == "DisConnect_") continue;
    ++operations;
    for (const bool suppress : {true, false}) {
      screen.boxes.clear();
      std::vector<Value> before;
      for (const Parameter& parameter : member.parameters) before.push_back(sampleFor(parameter.type));
      before[static_cast<std::size_t>(at) + 2] = suppress;
      std::vector<Value> after = before;
      std::vector<Argument> arguments;
      for (Value& variable : after) arguments.emplace_back(Reference(&variable));
      EXPECT_EQ(driver->invoke(member.name, ClassInfo::Access::call, arguments), Value()) << member.name;
      auto expected = before;
      expected[static_cast<std::size_t>(at)] = Short{100};
      expected[static_cast<std::size_t>(at) + 1] = fromUtf8(kWrongDevice);
      EXPECT_EQ(after, expected) << member.name;
      EXPECT_EQ(screen.boxes, suppress ? std::vector<Box>{} : std::vector{kRefusal}) << member.name;
    }
  }
  EXPECT_EQ(operations, 46);
  EXPECT_THAT(serial.sent, IsEmpty());
}

TEST_F(NullDriver, LeavesNoEarlierFiguresInTheRecords) {
  auto totals = std::make_shared<clsTransTotal>();
  totals->VatA = totals->VatB = totals->VatC = totals->VatD = totals->VatE = totals->receiptTotalAmt = 1;
  totals->receiptNumber = 9;
  auto day = std::make_shared<clsDailyAcc>();
  const Argument figure[] = {Argument(Value(Short{5}))};
  for (const Member& row : day->classInfo().members()) {
    if (row.kind == MemberKind::put) day->invoke(row.name, ClassInfo::Access::write, figure);
  }
  run(*driver, "transactionTotals", *totals);
  run(*driver, "getDailyTotals", *day);
  for (const ObjectPtr& record : {ObjectPtr(totals), ObjectPtr(day)}) {
    for (const Member& row : record->classInfo().members()) {
      if (row.kind == MemberKind::get) {
        EXPECT_EQ(convertTo<double>(record->call(row.name)), 0) << row.name;
      }
    }
  }
  for (const char* member : {"getSalesPerDepartment", "getSalesPerCategory"}) {
    auto sales = std::make_shared<clsAccumulator>();
    sales->Id = 4, sales->Desc = u"x", sales->Count = 2, sales->Amount = 3;
    run(*driver, member, *sales);
    EXPECT_EQ(std::tuple(sales->Id, sales->Desc, sales->Count, sales->Amount), std::tuple(4, u"", 0, 0)) << member;
  }
}

TEST_F(NullDriver, DisconnectClosesAPortThatWasLeftOpen) {
  struct Case {
    Long handle;
    bool closes;
    Short result;
    std::vector<Long> closed;
  };
  SupressError_ = false;
  for (const auto& [handle, closes, result, closed] :
       {Case{40, true, 1, {40}}, Case{40, false, 0, {40}}, Case{0, true, 0, {}}, Case{-1, true, 0, {}}}) {
    moduleState().portHandle = handle;
    serial.closes = closes;
    serial.closed.clear();
    EXPECT_EQ(run(*driver, "DisConnect_", u"COM1"), Value());
    EXPECT_EQ(Result, result);
    EXPECT_EQ(exresult(), "before");
    EXPECT_EQ(serial.closed, closed);
    EXPECT_LE(moduleState().portHandle, 0);
  }
  EXPECT_THAT(screen.boxes, IsEmpty());
}

TEST_F(NullDriver, StatusIsOneObjectThatIsSetAnewOnEveryRead) {
  const auto status = std::dynamic_pointer_cast<clsStatus>(std::get<ObjectPtr>(driver->call("StatusRead")));
  ASSERT_NE(status, nullptr);
  EXPECT_TRUE(status->isEuro);
  EXPECT_EQ(status->FiscalType, 0);
  status->isEuro = false;
  status->isFiscalFull = status->isDayOpen = status->isTransactionOpen = status->isInPayment = true;
  status->isInPaidOut = status->isInROA = status->isFlashNearFull = status->isFiscalNearFull = true;
  status->FiscalType = 2;
  status->FiscalSN = u"SN";
  EXPECT_EQ(std::get<ObjectPtr>(driver->call("StatusRead")), status);
  EXPECT_TRUE(status->isEuro);
  EXPECT_FALSE(status->isFiscalFull || status->isDayOpen || status->isTransactionOpen || status->isInPayment ||
               status->isInPaidOut || status->isInROA || status->isFlashNearFull || status->isFiscalNearFull);
  EXPECT_EQ(status->FiscalType, 2);
  EXPECT_EQ(status->FiscalSN, u"SN");
}

TEST_F(NullDriver, EveryErrorIsCriticalAndNoneCanBeMended) {
  for (const Short code : {Short{0}, Short{14}, Short{100}, Short{-3}, Short{32767}}) {
    EXPECT_EQ(driver->call("bFixableError", code), Value(false));
    EXPECT_EQ(driver->call("isErrorFixable", code), Value(false));
    EXPECT_EQ(driver->call("bShouldRetry", code), Value(false));
    EXPECT_EQ(driver->call("isCriticalError", code), Value(true));
  }
  EXPECT_EQ(driver->call("logoLineDescLength"), Value(Short{0}));
}

}  // namespace
}  // namespace mirvane::test
