#include <set>

#include "driver/device_errors.h"
#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

class Errors : public DriverTest {
 protected:
  std::shared_ptr<clsStatus> status() {
    return std::dynamic_pointer_cast<clsStatus>(std::get<ObjectPtr>(driver->call("StatusRead")));
  }
};

std::string hex(int value) {
  char digits[3];
  std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned>(value) & 0xFF);
  return digits;
}

const std::string kDeviceError = "DEVICE ERROR:/ Σφάλμα Συσκευής !", kPaperEnd = "DEVICE STATUS:Tέλος Χαρτιού !",
                  kOffline = "DEVICE ERROR:/Αποσυνδεδεμένος Εκτυπωτής!",
                  kPrinterSilent = "DEVICE ERROR:/o Εκτυπωτής δεν απαντά!'" + std::string(27, ' ');

TEST_F(Errors, PrinterStatusBecomesTheMessageAndNotTheResult) {
  for (int byte = 0; byte < 256; ++byte) {
    // The conditions are tested in this order, and the last one that holds is told.
    const std::string* expected = nullptr;
    if ((byte & 0x02) != 0) expected = &kDeviceError;
    if ((byte & 0x04) != 0) expected = &kPaperEnd;
    if ((byte & 0x10) != 0) expected = &kOffline;
    if ((byte & 0x40) != 0) expected = &kPrinterSilent;
    for (const std::string code : {"00", "19", "A7"}) {
      const std::string reply = code + "/" + hex(byte) + "/00/x/";
      exchange(reply);
      EXPECT_EQ(Result, std::stoi(code, nullptr, 16));
      const std::string plain = code == "19" ? "Printer paper end detected" : reply;
      EXPECT_EQ(exresult(), expected == nullptr ? plain : *expected) << reply;
      EXPECT_EQ(status()->isFlashNearFull, (byte & 0x20) != 0) << reply;
    }
  }
}

TEST_F(Errors, FiscalStatusBecomesFlags) {
  for (int byte = 0; byte < 256; ++byte) {
    exchange("00/00/" + hex(byte) + "/");
    const auto flags = status();
    EXPECT_EQ(flags->isDayOpen, (byte & 0x02) != 0) << byte;
    EXPECT_EQ(flags->isTransactionOpen, (byte & 0x04) != 0) << byte;
    EXPECT_EQ(flags->isInPayment, (byte & 0x08) != 0) << byte;
    EXPECT_TRUE(flags->isEuro);
    EXPECT_FALSE(flags->isFiscalFull || flags->isInPaidOut || flags->isInROA || flags->isFiscalNearFull ||
                 flags->isFlashNearFull);
    EXPECT_EQ(exresult(), "00/00/" + hex(byte) + "/");
  }
}

TEST_F(Errors, EveryCodeHasItsText) {
  const std::map<int, const char*> known = {{1, "Wrong number of fields"},
                                            {14, "Απασχολημένο σε άλλη λειτουργία"},
                                            {17, "transaction Not opened"},
                                            {21, "z Not closure"},
                                            {29, "fiscal unit Is full"},
                                            {40, "Payment’s code is out of range (1-3)"},
                                            {52, "NOMOREILEGALRECEIP"},
                                            {78, "NOSANEVATRATE"},
                                            {81, "WORNIGDATE"},
                                            {99, "ΝO MORE SALES"},
                                            {111, "Client mot found"},
                                            {130, "Θnformatted SD"},
                                            {141, "WARNING before the change of INVOICE’s “ROW”"},
                                            {143, "Clock’s synchronization with GSIS"},
                                            {151, "Reserved"},
                                            {158, "Πληρωμή EFTPOS σε εξέλιξη.."},
                                            {166, "Wrong type of sale"}};
  std::set<Text> texts;
  for (int code = 1; code <= 166; ++code) {
    const std::string text = toUtf8(deviceErrorText(code));
    texts.insert(fromUtf8(text));
    EXPECT_NE(text, "") << code;
    if (known.contains(code)) {
      EXPECT_EQ(text, known.at(code));
    }
    if (code == 14 || code == 146 || code == 158) continue;  // waited for
    exchange(hex(code) + "/00/00/x/");
    EXPECT_EQ(Result, code);
    EXPECT_EQ(exresult(), text) << code;
  }
  EXPECT_EQ(texts.size(), 162u) << "only the five reserved codes share a text";
  for (int code = 167; code <= 253; ++code) {
    exchange(hex(code) + "/00/00/x/");
    EXPECT_EQ(Result, code);
    EXPECT_EQ(exresult(), hex(code) + "/00/00/x/");
  }
  exchange("FE/00/00/x/");
  EXPECT_EQ(exresult(), "DEVICE STATUS:FE/00/00/x/");
  exchange("FF/00/00/x/");
  EXPECT_EQ(exresult(), "DEVICE ERROR:FF/00/00/x/");
  for (const int code : {-1, 0, 167, 254, 255}) EXPECT_EQ(deviceErrorText(code), u"") << code;
}

TEST_F(Errors, AReplyWithoutStatusBytesHasNoCondition) {
  const std::string reply = "0A/10/0E/x/";
  for (std::size_t size = 0; size <= reply.size(); ++size) {
    exchange("00/00/00/");
    exchange(reply.substr(0, size));
    EXPECT_EQ(Result, size >= 2 ? 10 : 0) << size;
    EXPECT_EQ(exresult(), size >= 8   ? kOffline
                          : size >= 2 ? "Cannot execute with day open"
                                      : reply.substr(0, size))
        << size;
    EXPECT_EQ(status()->isDayOpen, size >= 8) << size;
  }
}

TEST_F(Errors, AFailureIsShownOnceUnlessSuppressed) {
  struct Case {
    const char* reply;
    std::vector<Box> boxes;
  };
  const Case cases[] = {{"00/00/00/", {}},
                        {"00/04/00/", {}},
                        {"19/00/00/", {errorBox(25, "Printer paper end detected")}},
                        {"2A/00/00/", {errorBox(42, "The printer tray is open")}},
                        {"A7/00/00/", {errorBox(167, "A7/00/00/")}},
                        {"19/04/00/", {errorBox(25, kPaperEnd)}}};
  for (const bool suppress : {true, false}) {
    SupressError_ = suppress;
    for (const auto& [reply, boxes] : cases) {
      screen.boxes.clear();
      exchange(reply);
      EXPECT_EQ(screen.boxes, suppress ? std::vector<Box>{} : boxes) << reply;
      EXPECT_EQ(SupressError_, suppress);
    }
    moduleState().portHandle = 0;
    screen.boxes.clear();
    send(u"?/");
    EXPECT_EQ(screen.boxes, suppress ? std::vector<Box>{} : std::vector{errorBox(-6, "Κλειστή θύρα")});
    moduleState().portHandle = 40;
  }
  EXPECT_EQ(device.commands.size(), 2 * std::size(cases)) << "none is sent again";
}

TEST_F(Errors, AStateThatTheDeviceEndsByItselfIsWaitedFor) {
  struct Case {
    int code;
    platform::DeviceOutcome outcome;
    std::size_t sent;
    Short result;
    const char* text;
    bool isShown;
  };
  const Case cases[] = {{14, {0, u"00/00/00/w/"}, 2, 0, "00/00/00/again/", false},
                        {146, {0, u"00/00/00/w/"}, 2, 0, "00/00/00/again/", false},
                        {158, {0, u"00/00/00/w/"}, 1, 0, "00/00/00/w/", false},
                        {158, {156, u"EFTPOS Payment Failed"}, 1, 156, "EFTPOS Payment Failed", true},
                        {14, {112, u"Payment no change"}, 1, 112, "Payment no change", true},
                        {146, {-4, u"gone"}, 1, -4, "gone", true}};
  for (const bool suppress : {true, false}) {
    SupressError_ = suppress;
    for (const auto& [code, outcome, sent, result, text, isShown] : cases) {
      SCOPED_TRACE(code);
      device = {};
      screen.boxes.clear();
      screen.waits.clear();
      screen.outcomes = {outcome};
      device.answer(hex(code) + "/00/00/");
      device.answer("00/00/00/again/");
      send(u"5/1/");
      EXPECT_EQ(device.commands, std::vector<std::string>(sent, "5/1/"));
      EXPECT_THAT(screen.waits, ElementsAre(std::to_string(code) + " " + toUtf8(deviceErrorText(code))));
      EXPECT_EQ(Result, result);
      EXPECT_EQ(exresult(), text);
      EXPECT_EQ(driver->lastResult, outcome.code);
      EXPECT_EQ(driver->lastexResult, outcome.message);
      EXPECT_EQ(screen.boxes, isShown && !suppress ? std::vector{errorBox(result, text)} : std::vector<Box>{});
    }
  }
}

TEST_F(Errors, ABusyDeviceIsTriedAsOftenAsItIsBusy) {
  device.answer("0E/00/00/").answer("92/00/00/").answer("19/00/00/");
  screen.outcomes = {{0, u""}, {0, u""}};
  SupressError_ = false;
  send(u"F/3/");
  EXPECT_EQ(device.commands.size(), 3u);
  EXPECT_EQ(Result, 25);
  EXPECT_THAT(screen.boxes, ElementsAre(errorBox(25, "Printer paper end detected")));
}

TEST_F(Errors, CharactersThatTheDeviceDoesNotKnow) {
  const Box invalid{"INVALID CHARACTERS", 4160, "Τίτλος"};
  SupressError_ = false;
  send(u"P/日本 é/1/");
  EXPECT_THAT(screen.boxes, ElementsAre(invalid)) << "once, however many there are";
  send(u"P/Ελληνικά €/1/");
  EXPECT_EQ(screen.boxes.size(), 1u);
  SupressError_ = true;
  send(u"P/\U0001F600\xD800/1/");
  EXPECT_EQ(screen.boxes.size(), 1u) << "a suppressed call waits for nobody";
  EXPECT_THAT(device.commands, ElementsAre("P/?"
                                           "? ?/1/",
                                           "P/Ελληνικά €/1/",
                                           "P/?"
                                           "?/1/"));
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
  const auto before = status();
  EXPECT_EQ(before->FiscalType, 3);
  EXPECT_EQ(before->FiscalSN, u"");
  EXPECT_TRUE(before->isEuro);
  EXPECT_THAT(device.commands, IsEmpty()) << "the property asks the device nothing";
  device.answer("00/20/0E/");
  run(*driver, "printerStatusRead");
  EXPECT_THAT(device.commands, ElementsAre("?/"));
  EXPECT_TRUE(before->isDayOpen && before->isTransactionOpen && before->isInPayment && before->isFlashNearFull);
  before->isInROA = true;
  device.answer("05/00/00/");
  run(*driver, "printerStatusRead");
  EXPECT_EQ(Result, 5);
  EXPECT_TRUE(before->isInROA) << "a failed read changes nothing";
  EXPECT_EQ(status(), before);
}

}  // namespace
}  // namespace mirvane::test
