#include "facade/fiscal_trevik_module.h"
#include "support/price_adjustments.h"
#include "tests/fakes/component_test.h"
#include "text/code_page.h"

namespace mirvane::test {
namespace {

/// Called as programs do: through the facade, on COM1.
class Transactions : public DriverTest {
 protected:
  Transactions() { called = facade; }

  /// A payment; the device answers the remaining amount's question with `remaining`, and the closing with `closing`.
  std::vector<std::string> pay(const std::string& remaining, const std::string& closing = "00/00/02/closed/") {
    device.script.clear();
    device.answer("00/00/0E/paid/").answer(remaining).answer(closing).answer("19/00/00/");
    return call("Payment", 1, u"CASH", 10.0, 0, 0);
  }

  const std::string thirty_ = std::string(30, 'x');
  std::shared_ptr<fiscalTrevikModule> facade = std::make_shared<fiscalTrevikModule>();
};

TEST_F(Transactions, ItemLines) {
  const std::string longText = thirty_ + "tail";
  const std::tuple<const char*, std::string, std::string, double, double, double, Short, Short, std::string> cases[] = {
      {"ItemSale", "Καφές/Τσάι", "ζεστός", 2, 0.125, 13, 2, 3, "3/S//Καφες-Τσαι/ζεστος//2.000/0.13/2/13.00/3/"},
      {"ItemVoid", "A", "", 0.0005, 2.675, 6.5, 40, 0, "3/V//A///0.001/2.68/40/6.50/1/"},
      {"ItemRefund", "A", "b", -1.5, -2, 0, -1, -1, "3/R//A/b//-1.500/-2.00/-1/0.00/-1/"},
      {"ItemSale", longText, longText, 1, 1, 24, 1, 1, "3/S//" + thirty_ + "/" + thirty_ + "//1.000/1.00/1/24.00/1/"},
      {"ItemSale", " a ", " ", 1, 1e300, 24, 1, 1, "3/S// a / //1.000/1" + std::string(300, '0') + ".00/1/24.00/1/"},
      {"ItemSale", "", "//", -0.0001, -0.001, 24, 32767, 32767, "3/S///--//0.000/0.00/32767/24.00/32767/"}};
  for (const auto& [member, description, comment, quantity, price, rate, department, category, command] : cases) {
    device.commands.clear();
    facade->call(member, fromUtf8(description), quantity, price, rate, department, Result, Exresult, SupressError_,
                 fromUtf8(comment), category);
    EXPECT_THAT(device.commands, ElementsAre(command));
  }
}

TEST_F(Transactions, TheLastItemIsKeptOnSuccessOnly) {
  for (const char* member : {"ItemSale", "ItemVoid", "ItemRefund"}) {
    lastItem().department = 9, lastItem().amount = 99;
    device.answer("60/00/00/");
    call(member, u"A", 3.0, 2.5, 24.0, 4);
    EXPECT_EQ(Result, 96);
    EXPECT_EQ(std::tuple(lastItem().department, lastItem().amount), std::tuple(9, 99));
    call(member, u"A", 3.0, 2.5, 24.0, 4);
    EXPECT_EQ(std::tuple(lastItem().department, lastItem().amount), std::tuple(4, 7.5));
  }
}

TEST_F(Transactions, Comments) {
  const std::string long_ = thirty_ + thirty_;
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"Καλό/ποτό", "P/Καλο-ποτο/2/", "2/10/0/0/2/Καλό/ποτό/"},
      {long_, "P/" + long_.substr(0, 48) + "/2/", "2/10/0/0/2/" + long_.substr(0, 20) + "/"},
      {" @1% ", "P/ @1% /2/", "2/10/0/0/2/ @1% /"}};
  for (const auto& [text, printed, displayed] : cases) {
    EXPECT_THAT(call("commentPrinterPrint", fromUtf8(text), 2), ElementsAre(printed));
    EXPECT_THAT(call("commentDisplayPrint", 2, fromUtf8(text)), ElementsAre(displayed));
  }
  for (const TextView blank : {u"", u"   ", u"                                                 behind 48"}) {
    EXPECT_THAT(call("commentPrinterPrint", blank, 1), IsEmpty());
    EXPECT_EQ(std::tuple(Result, Exresult), std::tuple(0, u""));
  }
}

TEST_F(Transactions, PaperAndDrawer) {
  EXPECT_THAT(call("FeedPaper", -32768), ElementsAre("F/-32768/"));
  EXPECT_THAT(call("DrawerOpen"), ElementsAre("p/1/"));
  EXPECT_THAT(call("CutPaper", true), ElementsAre("p/2/1/"));
  EXPECT_THAT(call("CutPaper", false), ElementsAre("p/2/0/"));
}

TEST_F(Transactions, CashDocumentsAreClosed) {
  for (const auto& [member, code] : {std::pair("executeCashIn", "6/0/"), std::pair("executeCashOut", "6/1/")}) {
    const std::string first = code + std::string("10.50/Ταμειο-1/");
    device.answer("00/00/00/open/").answer("00/00/00/closed/");
    EXPECT_THAT(call(member, 10.5, u"Ταμείο/1"), ElementsAre(first, "O/1/"));
    EXPECT_EQ(exresult(), "00/00/00/closed/");
    device.answer("7D/00/00/");
    EXPECT_THAT(call(member, 10.5, u"Ταμείο/1"), ElementsAre(first));
    EXPECT_EQ(Result, 125);
  }
}

TEST_F(Transactions, WhatCannotBeCancelledIsClosed) {
  SupressError_ = false;
  device.answer("00/00/00/cancelled/").answer("4B/00/00/").answer("00/00/00/closed/");
  EXPECT_THAT(call("VoidReceipt"), ElementsAre("O/2/"));
  EXPECT_THAT(call("VoidReceipt"), ElementsAre("O/2/", "O/1/"));
  EXPECT_EQ(std::tuple(Result, exresult()), std::tuple(0, "00/00/00/closed/"));
  EXPECT_THAT(screen.boxes, ElementsAre(errorBox(75, "MUSTCLOSETRANSACTION")));
  device.answer("59/00/00/").answer("5B/00/00/");
  call("VoidReceipt");
  EXPECT_EQ(std::tuple(Result, exresult()), std::tuple(91, "NOT in Payment Mode"));
}

TEST_F(Transactions, PaymentCommands) {
  const Text tooLong = u"0123456789012345678901234567890";
  const std::tuple<Short, Short, Short, Text, Text, double, std::string> cases[] = {
      {1, 0, 0, u"Μετρητά", u"", 10, "5/1/Μετρητα//10.00///"},
      {2, 3, 1, u"a/b", u"γή/", 0.125, "5/2/a-b/γη-/0.13/3/1/"},
      {3, -1, 2, u"", u"x", 0, "5/3//x/0.00//2/"},
      {4, 12, -5, tooLong, tooLong, 1234.5,
       "5/4/012345678901234567890123456789/012345678901234567890123456789/1234.50/12//"}};
  for (const auto& [number, terminal, kind, description, second, amount, command] : cases) {
    device.commands.clear();
    // First the device refuses the payment, then it takes it.
    device.answer("9C/00/00/").answer("00/00/00/").answer("00/00/00/1.00/0.00/0.00/");
    for (const Short result : {Short{156}, Short{0}}) {
      facade->call("Payment", number, description, amount, terminal, kind, Result, Exresult, SupressError_, second);
      EXPECT_EQ(Result, result);
    }
    EXPECT_THAT(device.commands, ElementsAre(command, command, "5/99/1/1/1/"));
  }
}

TEST_F(Transactions, APaymentClosesTheReceiptWhenNothingRemains) {
  // A field without a number counts as nothing: the device knows.
  const std::vector<std::string> nothingRemains = {
      "00/00/0E/0.00/1.50/11.50/", "00/00/0E/-0.50/", "00/00/0E/0/", "00/04/0E/0.00/", "00/40/0E/-1/",
      "00/00/0E//1.00/",           "00/00/0E/x/"};
  const std::vector<std::string> others = {"00/00/0E/5.00/0.00/10.00/", "00/00/0E/0.01/", "00/00/0E/12abc/",
                                           "00/10/0E/5.00/"};
  for (const bool closes : {true, false}) {
    std::vector<std::string> expected = {"5/1/CASH//10.00///", "5/99/1/1/1/"};
    // The facade asks for the journal unless told otherwise.
    if (closes) expected.insert(expected.end(), {"O/1/", "v/"});
    for (const std::string& remaining : closes ? nothingRemains : others) {
      EXPECT_EQ(pay(remaining), expected) << remaining;
      EXPECT_EQ(Result, 0);
    }
  }
  // A reply that does not tell is asked for again; when none tells, the receipt stays as it is.
  SupressError_ = false;
  for (const std::string remaining : {"00/00/0E/", "00/00/0E", "00", "", "00/02/0E/", "00/00/0E/0"}) {
    device.script.clear();
    answers({remaining, remaining, remaining}, "");
    device.script.push_front({{framed("00/00/0E/")}});
    EXPECT_THAT(call("Payment", 1, u"CASH", 5.0, 0, 0), testing::Each(testing::StartsWith("5/")));
    EXPECT_EQ(device.commands.size(), 4u) << remaining;
    EXPECT_EQ(outcome(), "-3 H ταμειακή δεν Απαντά!");
    EXPECT_THAT(screen.boxes, ElementsAre(errorBox(-3, "H ταμειακή δεν Απαντά!")));
  }
  SupressError_ = true;
  pay("00/00/0E/5.00/");
  EXPECT_EQ(exresult(), "00/00/0E/5.00/");
  EXPECT_EQ(pay("40/00/00/0.00/").size(), 2u);
  EXPECT_EQ(std::tuple(Result, exresult()), std::tuple(64, "TRANSACTIONNOTOPEN"));
}

TEST_F(Transactions, ReadingForTheJournalKeepsTheOutcomeOfThePayment) {
  SupressError_ = false;
  EXPECT_EQ(pay("00/00/0E/0.00/").back(), "v/");
  EXPECT_EQ(std::tuple(Result, exresult()), std::tuple(0, "00/00/02/closed/"));
  EXPECT_THAT(screen.boxes, IsEmpty()) << "the receipt is printed, so nothing has failed";
  EXPECT_EQ(pay("00/00/0E/0.00/", "45/00/00/").back(), "O/1/") << "the closing failed";
  EXPECT_EQ(Result, 69);
  device.script.clear();
  device.answer("00/00/0E/").answer("00/00/0E/0.00/");
  facade->call("Payment", 1, u"CASH", 10.0, 0, 0, Result, Exresult, SupressError_, u"", false);
  EXPECT_EQ(device.commands.back(), "O/1/");
}

// The end of a card payment is told once. Where it may have got lost, the receipt tells what became of it.
TEST_F(Transactions, WhatRemainsDecidesWhereTheEndOfACardPaymentGotLost) {
  const std::string ask = "5/99/1/1/1/", card = "5/2/CARD//10.00/1/1/", unknown = "-3 H ταμειακή δεν Απαντά!";
  struct Case {
    const char* what;
    std::vector<std::string> replies;  // to the payment and the looks; "" is lost
    std::string before;                // what a payment before left, "" where there was none
    std::string remains, total;
    std::vector<std::string> then;  // what is sent behind the looks
    std::string outcome;
  };
  const std::vector<std::string> lookLost = {"9E/00/06/", "00", "00/00/06/"};
  const std::string partly = "0 00/00/0E/4.00/", done = "0 00/00/00/";
  const Case cases[] = {
      {"nothing got lost", {"9E/00/06/", "00/00/06/"}, "", "4.00/", "", {ask}, partly},
      {"nothing remains", lookLost, "", "0.00/", "", {ask, "O/1/", "v/"}, done},
      {"less than the total", lookLost, "", "4.00/", "14.00", {ask, "9/"}, partly},
      {"as much as the total", lookLost, "", "14.00/", "14.00", {ask, "9/"}, unknown},
      {"no total is told", lookLost, "", "4.00/", "", {ask, "9/"}, unknown},
      {"less than remained", lookLost, "14.00", "4.00/", "", {ask}, partly},
      {"as much as remained", lookLost, "14.00", "14.00/", "", {ask}, unknown},
      {"the answer itself", {"00"}, "14.00", "14.00/", "", {ask}, unknown},
      {"the answer itself, and booked", {"00"}, "14.00", "4.00/", "", {ask}, partly},
      {"a look of the question's wait", {"00/00/06/"}, "14.00", "9E", "", {ask, "?/", "?/", ask}, unknown},
  };
  screen.expectsWaits = true;
  for (const bool isNetwork : {false, true}) {
    if (isNetwork) connectNetwork();
    for (const auto& [what, replies, before, remains, total, then, told] : cases) {
      SCOPED_TRACE(what);
      device.script.clear();
      device.answer(before.empty() ? "00/00/06/" : "00/00/0E/");
      send(u"3/S/");
      if (!before.empty()) {
        answers({"", before + "/"}, "00/00/0E/");
        call("Payment", 1, u"CASH", 10.0, 0, 0);
        send(u"v/");  // a question changes nothing
      }
      answers(replies, "");
      if (remains == "9E") {
        answers({"9E/00/0E/", "00", "00/00/0E/", "00/00/0E/" + before + "/"}, "");
      } else {
        answers({remains}, "00/00/0E/");
      }
      if (then.size() == 2) answers({"0/0/0/0/0/7/" + total + (total.empty() ? "" : "/")}, "00/00/0E/");
      std::vector<std::string> expected = {card};
      expected.insert(expected.end(), replies.size() - 1, "?/");
      expected.insert(expected.end(), then.begin(), then.end());
      EXPECT_EQ(call("Payment", 2, u"CARD", 10.0, 1, 1), expected);
      EXPECT_EQ(outcome(), told);
    }
    // Something was sold in between, so what remained before is not known.
    device.script.clear();
    answers({"", "14.00/", ""}, "00/00/0E/");
    call("Payment", 1, u"CASH", 10.0, 0, 0);
    call("ItemSale", u"A", 1.0, 1.0, 24.0, 1);
    answers({"00", "00/00/0E/4.00/"}, "");
    call("Payment", 2, u"CARD", 10.0, 1, 1);
    EXPECT_EQ(outcome(), unknown);
    // A payment that a program sends as a text has nobody to ask.
    for (const auto& [command, result] : {std::pair(u"5/2///9.00/1/1/", -3), std::pair(u"5/1///9.00///", 0)}) {
      answers(lookLost, "");
      send(command);
      EXPECT_EQ(Result, result);
    }
  }
}

TEST_F(Transactions, APaymentOfAnyNumberIsAPayment) {
  screen.expectsWaits = true;
  device.answer("00").answer("00/00/0E/1.00/");
  EXPECT_THAT(call("Payment", 99, u"", 1.0, 0, 0), ElementsAre("5/99///1.00///", "5/99/1/1/1/"));
  device.answer("9E/00/0E/").answer("00/00/0E/").answer("00/00/0E/1.00/");
  EXPECT_THAT(call("Payment", 99, u"", 1.0, 0, 0), ElementsAre("5/99///1.00///", "?/", "5/99/1/1/1/"));
}

TEST_F(Transactions, APaymentMayTakeThreeMinutes) {
  device.answer("00/00/0E/", 175).answer("00/00/0E/0.00/", 5);
  call("Payment", 2, u"CARD", 10.0, 1, 1);
  EXPECT_EQ(serial.attempts().size(), 4u) << "every command is sent once";
  EXPECT_EQ(Result, 0);
}

}  // namespace
}  // namespace mirvane::test
