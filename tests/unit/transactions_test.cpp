#include "interface/fiscal_trevik_module.h"
#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

/// Called as programs do: through the facade, on COM1.
class Transactions : public ComponentTest {
 protected:
  Transactions() { run(*facade, "Connect_", u"COM1"); }

  template <class... A>
  void call(std::string_view member, A&&... arguments) {
    device.commands.clear();
    run(*facade, member, std::forward<A>(arguments)...);
  }
  /// An item line with a comment and a category.
  void item(const char* member, const char* description, double quantity, double price, double rate, Short department,
            const char* comment, Short category) {
    device.commands.clear();
    facade->call(member, fromUtf8(description), quantity, price, rate, department, Result, Exresult, SupressError_,
                 fromUtf8(comment), category);
  }
  /// A payment; the device answers the remaining amount's question with `remaining`.
  void pay(const std::string& remaining, bool bReadEJ = false) {
    device.commands.clear();
    device.script.clear();
    device.answer("00/00/0E/paid/").answer(remaining).answer("00/00/02/closed/").answer("00/00/00/M/1/2/");
    Result = 77;
    facade->call("Payment", 1, u"CASH", 10.0, 0, 0, Result, Exresult, SupressError_, u"", bReadEJ);
  }

  const std::string thirty_ = std::string(30, 'x');
  std::shared_ptr<fiscalTrevikModule> facade = std::make_shared<fiscalTrevikModule>();
};

TEST_F(Transactions, ItemLines) {
  call("ItemSale", u"A/B", 1.0, 2.5, 24.0, 1);
  EXPECT_THAT(device.commands, ElementsAre("3/S//A-B///1.000/2.50/1/24.00/1/"));
  struct Case {
    const char *member, *description, *comment;
    double quantity, price, rate;
    Short department, category;
    std::string command;
  };
  const std::string longText = thirty_ + "tail";
  const Case cases[] = {
      {"ItemSale", "Καφές/Τσάι", "ζεστός", 2, 0.125, 13, 2, 3, "3/S//Καφες-Τσαι/ζεστος//2.000/0.13/2/13.00/3/"},
      {"ItemVoid", "A", "", 0.0005, 2.675, 6.5, 40, 0, "3/V//A///0.001/2.68/40/6.50/1/"},
      {"ItemRefund", "A", "b", -1.5, -2, 0, -1, -1, "3/R//A/b//-1.500/-2.00/-1/0.00/-1/"},
      {"ItemSale", longText.c_str(), longText.c_str(), 1, 1, 24, 1, 1,
       "3/S//" + thirty_ + "/" + thirty_ + "//1.000/1.00/1/24.00/1/"},
      {"ItemSale", " a ", " ", 1, 1e300, 24, 1, 1, "3/S// a / //1.000/1" + std::string(300, '0') + ".00/1/24.00/1/"},
      {"ItemSale", "", "//", -0.0001, -0.001, 24, 32767, 32767, "3/S///--//0.000/0.00/32767/24.00/32767/"}};
  for (const auto& row : cases) {
    item(row.member, row.description, row.quantity, row.price, row.rate, row.department, row.comment, row.category);
    EXPECT_THAT(device.commands, ElementsAre(row.command));
  }
}

TEST_F(Transactions, TheLastItemIsKeptOnSuccessOnly) {
  for (const char* member : {"ItemSale", "ItemVoid", "ItemRefund"}) {
    moduleState().lastItemDep = 9;
    moduleState().lastItemAmount = 99;
    device.answer("60/00/00/");
    call(member, u"A", 3.0, 2.5, 24.0, 4);
    EXPECT_EQ(Result, 96);
    EXPECT_EQ(moduleState().lastItemDep, 9);
    EXPECT_EQ(moduleState().lastItemAmount, 99);
    call(member, u"A", 3.0, 2.5, 24.0, 4);
    EXPECT_EQ(moduleState().lastItemDep, 4);
    EXPECT_EQ(moduleState().lastItemAmount, 7.5);
  }
}

TEST_F(Transactions, Comments) {
  const std::string digits = "0123456789", sixty = digits + digits + digits + digits + digits + digits;
  struct Case {
    std::string text, printed, displayed;
  };
  const Case cases[] = {{"Καλό/ποτό", "P/Καλο-ποτο/2/", "2/10/0/0/2/Καλό/ποτό/"},
                        {sixty, "P/" + sixty.substr(0, 48) + "/2/", "2/10/0/0/2/" + sixty.substr(0, 20) + "/"},
                        {" x ", "P/ x /2/", "2/10/0/0/2/ x /"},
                        {"@1@2%", "P/@1@2%/2/", "2/10/0/0/2/@1@2%/"}};
  for (const auto& [text, printed, displayed] : cases) {
    call("commentPrinterPrint", fromUtf8(text), 2);
    EXPECT_THAT(device.commands, ElementsAre(printed));
    call("commentDisplayPrint", 2, fromUtf8(text));
    EXPECT_THAT(device.commands, ElementsAre(displayed));
  }
  for (const TextView blank : {u"", u"   ", u"                                                 behind 48"}) {
    call("commentPrinterPrint", blank, 1);
    EXPECT_THAT(device.commands, IsEmpty());
    EXPECT_EQ(Result, 0);
    EXPECT_EQ(exresult(), "");
  }
}

TEST_F(Transactions, PaperAndDrawer) {
  call("FeedPaper", 3);
  EXPECT_THAT(device.commands, ElementsAre("F/3/"));
  call("FeedPaper", -32768);
  EXPECT_THAT(device.commands, ElementsAre("F/-32768/"));
  call("DrawerOpen");
  EXPECT_THAT(device.commands, ElementsAre("p/1/"));
  call("CutPaper", true);
  EXPECT_THAT(device.commands, ElementsAre("p/2/1/"));
  call("CutPaper", false);
  EXPECT_THAT(device.commands, ElementsAre("p/2/0/"));
}

TEST_F(Transactions, CashDocumentsAreClosed) {
  for (const auto& [member, code] : {std::pair("executeCashIn", "6/0/"), std::pair("executeCashOut", "6/1/")}) {
    const std::string first = code + std::string("10.50/Ταμειο-1/");
    device.answer("00/00/00/open/").answer("00/00/00/closed/");
    call(member, 10.5, u"Ταμείο/1");
    EXPECT_THAT(device.commands, ElementsAre(first, "O/1/"));
    EXPECT_EQ(exresult(), "00/00/00/closed/");
    device.answer("7D/00/00/");
    call(member, 10.5, u"Ταμείο/1");
    EXPECT_THAT(device.commands, ElementsAre(first));
    EXPECT_EQ(Result, 125);
    device.answer("00/00/00/").answer("40/00/00/");
    call(member, 10.5, u"Ταμείο/1");
    EXPECT_EQ(Result, 64) << "the closing's own result";
    EXPECT_EQ(exresult(), "TRANSACTIONNOTOPEN");
  }
}

TEST_F(Transactions, WhatCannotBeCancelledIsClosed) {
  SupressError_ = false;
  device.answer("00/00/00/cancelled/");
  call("VoidReceipt");
  EXPECT_THAT(device.commands, ElementsAre("O/2/"));
  device.answer("4B/00/00/").answer("00/00/00/closed/");
  call("VoidReceipt");
  EXPECT_THAT(device.commands, ElementsAre("O/2/", "O/1/"));
  EXPECT_EQ(Result, 0);
  EXPECT_EQ(exresult(), "00/00/00/closed/");
  EXPECT_THAT(screen.boxes, ElementsAre(errorBox(75, "MUSTCLOSETRANSACTION")));
  device.answer("59/00/00/").answer("5B/00/00/");
  call("VoidReceipt");
  EXPECT_EQ(Result, 91);
  EXPECT_EQ(exresult(), "NOT in Payment Mode");
}

TEST_F(Transactions, PaymentCommands) {
  struct Case {
    Short number, terminal, kind;
    const char16_t *description, *second;
    double amount;
    std::string command;
  };
  const Case cases[] = {{1, 0, 0, u"Μετρητά", u"", 10, "5/1/Μετρητα//10.00///"},
                        {2, 3, 1, u"a/b", u"γή/", 0.125, "5/2/a-b/γη-/0.13/3/1/"},
                        {3, -1, 2, u"", u"x", 0, "5/3//x/0.00//2/"},
                        {4, 12, -5, u"0123456789012345678901234567890", u"0123456789012345678901234567890", 1234.5,
                         "5/4/012345678901234567890123456789/012345678901234567890123456789/1234.50/12//"}};
  for (const Case& row : cases) {
    device.commands.clear();
    std::vector<bool> card;
    device.during = [&card] { card.push_back(moduleState().cardPaymentUnderWay); };
    device.answer("00/00/00/").answer("00/00/00/1.00/0.00/0.00/");
    facade->call("Payment", row.number, row.description, row.amount, row.terminal, row.kind, Result, Exresult,
                 SupressError_, row.second);
    EXPECT_THAT(device.commands, ElementsAre(row.command, "5/99/1/1/1/"));
    EXPECT_THAT(card, ElementsAre(row.number == 2 || row.number == 4, false));
    device.answer("9C/00/00/");
    facade->call("Payment", row.number, row.description, row.amount, row.terminal, row.kind, Result, Exresult,
                 SupressError_);
    EXPECT_EQ(Result, 156);
    EXPECT_FALSE(moduleState().cardPaymentUnderWay);
    device.during = nullptr;
  }
}

TEST_F(Transactions, APaymentClosesTheReceiptWhenNothingRemains) {
  struct Case {
    const char* remaining;
    bool closes;
  };
  const Case cases[] = {{"00/00/0E/0.00/1.50/11.50/", true},
                        {"00/00/0E/-0.50/", true},
                        {"00/00/0E/0/", true},
                        {"00/00/0E/5.00/0.00/10.00/", false},
                        {"00/00/0E/0.01/", false},
                        {"00/00/0E/12abc/", false},
                        {"00/00/0E/", false},
                        {"00/00/0E", false},
                        {"00", false},
                        {"00/00/0E//1.00/", false},
                        {"00/04/0E/0.00/", true},
                        {"00/10/0E/5.00/", false},
                        {"00/02/0E/", false},
                        {"00/40/0E/-1/", true}};
  for (const auto& [remaining, closes] : cases) {
    SCOPED_TRACE(remaining);
    pay(remaining);
    std::vector<std::string> expected = {"5/1/CASH//10.00///", "5/99/1/1/1/"};
    if (closes) expected.emplace_back("O/1/");
    EXPECT_EQ(device.commands, expected);
    EXPECT_EQ(Result, 0);
  }
  pay("00/00/0E/5.00/");
  EXPECT_EQ(exresult(), "00/00/0E/5.00/");
  pay("40/00/00/0.00/");
  EXPECT_EQ(device.commands.size(), 2u);
  EXPECT_EQ(Result, 64);
  EXPECT_EQ(exresult(), "TRANSACTIONNOTOPEN");
}

TEST_F(Transactions, ReadingForTheJournalKeepsTheOutcomeOfThePayment) {
  pay("00/00/0E/0.00/", true);
  EXPECT_THAT(device.commands, ElementsAre("5/1/CASH//10.00///", "5/99/1/1/1/", "O/1/", "v/"));
  EXPECT_EQ(Result, 0);
  EXPECT_EQ(exresult(), "00/00/02/closed/");
  pay("00/00/0E/1.00/", true);
  EXPECT_EQ(device.commands.size(), 2u) << "not closed: nothing to read";
  device.script.clear();
  SupressError_ = false;
  device.answer("00/00/0E/").answer("00/00/0E/0.00/").answer("00/00/02/closed/").answer("19/00/00/");
  call("Payment", 1, u"CASH", 10.0, 0, 0);
  EXPECT_EQ(device.commands.size(), 4u) << "the facade asks for it unless told otherwise";
  EXPECT_EQ(Result, 0);
  EXPECT_EQ(exresult(), "00/00/02/closed/");
  EXPECT_THAT(screen.boxes, IsEmpty()) << "the receipt is printed, so nothing has failed";
  device.answer("00/00/0E/").answer("00/00/0E/0.00/").answer("45/00/00/");
  call("Payment", 1, u"CASH", 10.0, 0, 0);
  EXPECT_EQ(device.commands.size(), 3u) << "the closing failed";
  EXPECT_EQ(Result, 69);
}

TEST_F(Transactions, APaymentMayTakeThreeMinutes) {
  device.answer("00/00/0E/", 175).answer("00/00/0E/0.00/", 5);
  call("Payment", 2, u"CARD", 10.0, 1, 1);
  EXPECT_EQ(serial.attempts().size(), 4u) << "every command is sent once";
  EXPECT_EQ(Result, 0);
}

TEST_F(Transactions, AnAdjustmentIsMadeWithoutTheDevice) {
  for (const bool onLastItem : {true, false}) {
    const auto adjustment = std::get<ObjectPtr>(facade->call("adjustment", onLastItem));
    ASSERT_NE(adjustment, nullptr);
    EXPECT_EQ(adjustment->classInfo().name(), "clsAdjust");
    EXPECT_EQ(moduleState().adjustOnLastItem, onLastItem);
  }
  EXPECT_THAT(device.commands, IsEmpty());
}

}  // namespace
}  // namespace mirvane::test
