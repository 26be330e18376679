#include <set>

#include "link/open_port.h"
#include "protocol/device_codes.h"
#include "session/wait_window.h"
#include "tests/fakes/component_test.h"
#include "text/code_page.h"

namespace mirvane::test {
namespace {

class Errors : public DriverTest {};

std::string hex(int value) {
  const char* const digits = "0123456789ABCDEF";
  return {digits[value / 16], digits[value % 16]};
}

const std::string kPaperEnd = "DEVICE STATUS:Tέλος Χαρτιού !", kOffline = "DEVICE ERROR:/Αποσυνδεδεμένος Εκτυπωτής!";

TEST_F(Errors, PrinterStatusBecomesTheMessageAndFiscalStatusFlags) {
  // The conditions are tested in this order, and the last one that holds is told.
  const std::pair<int, std::string> conditions[] = {
      {0x02, "DEVICE ERROR:/ Σφάλμα Συσκευής !"},
      {0x04, kPaperEnd},
      {0x10, kOffline},
      {0x40, "DEVICE ERROR:/o Εκτυπωτής δεν απαντά!'" + std::string(27, ' ')}};
  for (int byte = 0; byte < 256; ++byte) {
    for (const std::string code : {"00", "19", "a7"}) {
      const std::string reply = code + "/" + hex(byte) + "/" + hex(255 - byte) + "/x/";
      std::string expected = code == "19" ? "Printer paper end detected" : reply;
      for (const auto& [bit, text] : conditions) expected = (byte & bit) != 0 ? text : expected;
      exchange(reply);
      EXPECT_EQ(outcome(), std::to_string(std::stoi(code, nullptr, 16)) + " " + expected) << reply;
      const auto flags = statusOf(*driver);
      EXPECT_EQ(flags->isFlashNearFull, (byte & 0x20) != 0) << reply;
      EXPECT_EQ(std::tuple(flags->isDayOpen, flags->isTransactionOpen, flags->isInPayment, flags->isEuro),
                std::tuple((byte & 0x02) == 0, (byte & 0x04) == 0, (byte & 0x08) == 0, true))
          << reply;
      EXPECT_FALSE(flags->isFiscalFull || flags->isInPaidOut || flags->isInROA || flags->isFiscalNearFull);
    }
  }
}

TEST_F(Errors, EveryCodeHasItsText) {
  EXPECT_EQ(deviceErrorText(158), u"Πληρωμή EFTPOS σε εξέλιξη..");
  EXPECT_EQ(deviceErrorText(166), u"Wrong type of sale");
  std::set<Text> texts;
  for (int code = 1; code <= 255; ++code) {
    const std::string text = toUtf8(deviceErrorText(code)), reply = hex(code) + "/00/00/x/";
    EXPECT_EQ(text.empty(), code > 166) << code;
    if (code <= 166) texts.insert(fromUtf8(text));
    if (code == 14 || code == 146 || code == 158) continue;  // waited for
    exchange(reply);
    const std::string label = code == 255 ? "DEVICE ERROR:" : code == 254 ? "DEVICE STATUS:" : "";
    EXPECT_EQ(outcome(), std::to_string(code) + " " + label + (code > 166 ? reply : text));
  }
  EXPECT_EQ(texts.size(), 162u) << "only the five reserved codes share a text";
}

TEST_F(Errors, AReplyWithoutStatusBytesHasNoCondition) {
  const std::string reply = "0A/10/0E/x/";
  for (std::size_t size = 0; size <= reply.size(); ++size) {
    exchange("00/00/00/");
    device.answer(reply.substr(0, size));
    send(u"F/1/");
    EXPECT_EQ(Result, size >= 2 ? 10 : 0) << size;
    EXPECT_EQ(exresult(), size >= 8 ? kOffline : size >= 2 ? "Cannot execute with day open" : reply.substr(0, size));
    EXPECT_EQ(statusOf(*driver)->isDayOpen, size >= 8) << size;
  }
}

TEST_F(Errors, AFailureIsShownOnceUnlessSuppressed) {
  const auto expected = {errorBox(25, kPaperEnd), errorBox(167, "A7/00/00/"), errorBox(-6, "Κλειστή θύρα")};
  for (const bool suppress : {true, false}) {
    SupressError_ = suppress;
    for (const char* reply : {"00/04/00/", "19/04/00/", "A7/00/00/"}) exchange(reply);
    thePort().handle = 0;
    send(u"?/");
    EXPECT_EQ(screen.boxes, suppress ? std::vector<Box>{} : expected);
    thePort().handle = 40;
  }
  EXPECT_EQ(device.commands.size(), 6u) << "none is sent again";
}

TEST_F(Errors, AStateThatTheDeviceEndsByItselfIsWaitedFor) {
  const std::string caption = "Μήνυμα Ταμειακής (Varlen Fiscal)|", ask = "?/", pay = "5/1///1.00/1//";
  const std::string busy = caption + "Κατάσταση [14]|Απασχολημένο σε άλλη λειτουργία";
  const std::string state = caption + "Κατάσταση [158]|Πληρωμή EFTPOS σε εξέλιξη..";
  const std::string card = caption + "Αναμονή EFTPOS[158]|Πληρωμή EFTPOS σε εξέλιξη..";
  // What the device says, poll by poll; what it was sent behind the first command; what the operator read.
  const std::tuple<Strings, Strings, Short, const char*, Strings> cases[] = {
      {{"0E", "0E", "00"}, {ask, ask, pay}, 0, "00/00/00/x/", {busy, busy}},
      {{"9E", "9E", "00"}, {ask, ask}, 0, "00/00/00/x/", {state, card}},
      {{"92", "19", "70"}, {ask, ask}, 112, "Payment no change", {"", "|Κατάσταση [25]|Printer paper end detected"}},
      {{"9E", "9C"}, {ask}, 156, "EFTPOS Payment Failed", {""}},
      // It is tried as often as it is busy.
      {{"0E", "00", "92", "00", "70"}, {ask, pay, ask, pay}, 112, "Payment no change", {"", ""}}};
  screen.expectsWaits = true;
  for (const bool suppress : {true, false}) {
    SupressError_ = suppress;
    for (const auto& [replies, commands, result, text, read] : cases) {
      SCOPED_TRACE(text);
      device = {};
      screen.boxes.clear();
      screen.waits.clear();
      for (const std::string& code : replies) device.answer(code + "/00/00/x/");
      device.answer("00/00/00/x/");
      send(fromUtf8(pay));
      Strings expected = commands;
      expected.insert(expected.begin(), pay);
      EXPECT_EQ(device.commands, expected);
      EXPECT_EQ(outcome(), std::to_string(result) + " " + text);
      EXPECT_EQ(screen.boxes, result != 0 ? unlessSuppressed(errorBox(result, text)) : std::vector<Box>{});
      ASSERT_EQ(screen.waits.size(), read.size());
      for (std::size_t i = 0; i < read.size(); ++i) EXPECT_TRUE(screen.waits[i].ends_with(read[i])) << screen.waits[i];
      EXPECT_FALSE(isWaitShown());
    }
  }
  // What met a card payment under way was not taken, and is sent again once; what could be that payment never is.
  const Strings others = {"3/S/", "5/99/1/1/1/", "E/0/1////////"},
                own = {"5/1///1.00///", " 5/2/C//9.00/1/1/", "E/2/1/"};
  const std::tuple<Strings, std::size_t, std::size_t, Short> meetings[] = {
      {{"9E", "00", "00"}, 3, 2, 0},
      {{"9E", "9E", "00", "9E"}, 4, 3, 158},
      {{"0E", "9E", "00", "00"}, 4, 3, 0},
      {{"0E", "9E", "00", "9E", "00", "00"}, 6, 3, 0},
      {{"0E", "00", "9E", "00", "9E"}, 5, 4, 158},
      {{"9E", "00", "0E", "00", "0E", "00", "00"}, 7, 2, 0}};
  for (const auto& [replies, ofOthers, ofOwn, result] : meetings) {
    for (const bool couldBe : {false, true}) {
      for (const std::string& command : couldBe ? own : others) {
        SCOPED_TRACE(command + testing::PrintToString(replies));
        device = {};
        for (const std::string& code : replies) device.answer(code + "/00/06/x/");
        send(fromUtf8(command));
        EXPECT_EQ(device.commands.size(), couldBe ? ofOwn : ofOthers);
        EXPECT_EQ(Result, couldBe ? 0 : result);
      }
    }
  }
  // A look that tells nothing is no outcome.
  device = {};
  device.answer("9E/00/00/").answer("9C").answer("").answer("9").answer("9C/00/00/");
  send(fromUtf8(pay));
  EXPECT_EQ(std::tuple(Result, device.commands.size()), std::tuple(156, 5u));
  // A call from within a wait: no second window, and no outcome but its own.
  const WaitMark mark;
  device = {};
  screen.waits.clear();
  exchange("0E/00/00/");
  EXPECT_EQ(Result, 14);
  EXPECT_THAT(screen.waits, IsEmpty());
}

TEST_F(Errors, CharactersThatTheDeviceDoesNotKnow) {
  SupressError_ = false;
  send(u"P/日本 é/1/");
  EXPECT_THAT(screen.boxes, ElementsAre(Box{"INVALID CHARACTERS", 4160, "Τίτλος"})) << "once, however many there are";
  send(u"P/Ελληνικά €/1/");
  SupressError_ = true;
  send(u"P/\U0001F600\xD800/1/");
  EXPECT_EQ(screen.boxes.size(), 1u) << "a suppressed call waits for nobody";
  EXPECT_THAT(device.commands, ElementsAre("P/\?\? e/1/", "P/Ελληνικά €/1/", "P/\?\?/1/"));
}

TEST_F(Errors, WhatACodeMeans) {
  const std::set<int> fixable = {14, 146, 158}, retried = {14, 146};
  const std::set<int> critical = {27, 28, 29, 32, 50, 76, 100, 118, 119, 132, 133, 134, 135, 144, 148, 149};
  for (int i = -300; i <= 300; ++i) {
    const auto code = static_cast<Short>(i);
    EXPECT_EQ(driver->call("isErrorFixable", code), Value(fixable.contains(i))) << i;
    EXPECT_EQ(driver->call("bFixableError", code), Value(fixable.contains(i))) << i;
    EXPECT_EQ(driver->call("bShouldRetry", code), Value(retried.contains(i))) << i;
    EXPECT_EQ(driver->call("isCriticalError", code), Value(critical.contains(i) || (i < 0 && i != -207))) << i;
  }
}

TEST_F(Errors, ReadingTheStatusOfTheDevice) {
  const auto before = statusOf(*driver);
  EXPECT_EQ(std::tuple(before->FiscalType, before->isEuro), std::tuple(3, true));
  EXPECT_THAT(device.commands, IsEmpty()) << "the property asks the device nothing";
  device.answer("00/20/0E/").answer("05/00/00/");
  run(*driver, "printerStatusRead");
  EXPECT_THAT(device.commands, ElementsAre("?/"));
  EXPECT_TRUE(before->isTransactionOpen && before->isFlashNearFull) << "it is one object";
  before->isInROA = true;
  run(*driver, "printerStatusRead");
  EXPECT_TRUE(Result == 5 && before->isInROA) << "a failed read changes nothing";
}

}  // namespace
}  // namespace mirvane::test
