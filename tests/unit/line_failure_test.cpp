#include "tests/fakes/link_fixture.h"
#include "text/code_page.h"

namespace mirvane::test {
namespace {

TEST_F(Link, ASilentDeviceIsAskedAgainEveryTenSecondsWithoutEnd) {
  const double noon = 43200;
  // The later ones pass midnight, which does not change the deadlines.
  const std::tuple<double, Short, double> cases[] = {{noon, 0, 10},     {noon, 5, 10},     {noon, 180, 180},
                                                     {86399.9, 15, 15}, {86390.2, 15, 15}, {86385, 15, 15},
                                                     {86200, 30, 30}};
  for (const auto& [startOfDay, timeOut, first] : cases) {
    SCOPED_TRACE(startOfDay + timeOut);
    clock.startOfDay = startOfDay - clock.now;
    serial.sent.clear();
    const double start = clock.now;
    device.silence(40).answer("00/00/00/late/");
    EXPECT_EQ(transfer(u"F/3/", timeOut), "00/00/00/late/");
    EXPECT_EQ(Result, 0);
    const auto attempts = serial.attempts();
    ASSERT_EQ(attempts.size(), 41u);
    EXPECT_NEAR(attempts[1] - start, first, 0.7);
    for (std::size_t i = 2; i < attempts.size(); ++i) EXPECT_NEAR(attempts[i] - attempts[i - 1], 10, 0.1);
    EXPECT_EQ(serial.sent.size(), 41 * 4 + 1u) << "CAN, CAN, ENQ and frame each time, one ACK";
  }
  EXPECT_THAT(screen.boxes, IsEmpty());
}

TEST_F(Link, ALineThatDiedIsOpenedAnew) {
  const struct {
    double gone, back;  // seconds after the command
    std::vector<std::string> commands;
    std::vector<std::string> opened;
    double until;
  } cases[] = {
      {-1, 0, {"F/3/"}, {"COM1"}, 0},
      // Looked for at once and then every two seconds, whatever the command's own time; the frame that went out goes
      // out again after ten.
      {0.5, 3, {"F/3/", "F/3/"}, {"COM1", "\\\\.\\COM1", "COM1", "\\\\.\\COM1", "COM1"}, 10},
      {0.5, 25, {"F/3/", "F/3/"}, {"COM1"}, 26.5},
  };
  for (const auto& [gone, back, commands, opened, until] : cases) {
    run(*driver, "DisConnect_", u"");
    clock.now += 1;
    connect(u"COM1");
    const double begin = clock.now + (gone < 0 ? 2 : 0);
    serial.unpluggedFrom = begin + gone;
    serial.unpluggedUntil = begin + back;
    clock.now = begin;
    device.commands.clear();
    serial.opened.clear();
    serial.closed.clear();
    serial.settings.clear();
    if (gone > 0) device.answer("00/00/00/", 1);  // never arrives
    EXPECT_EQ(transfer(u"F/3/"), "00/00/00/");
    EXPECT_EQ(device.commands, commands);
    if (back < 10) {
      EXPECT_EQ(serial.opened, opened);
    }
    EXPECT_EQ(serial.settings, "115200,n,8,1");
    EXPECT_EQ(serial.closed.size(), 1U) << "a handle is closed once, and nothing that is none";
    EXPECT_NEAR(clock.now - begin, until, 0.5);
  }
  // Lost for good, the port is still the program's to close.
  serial.unpluggedFrom = clock.now + 0.5;
  serial.unpluggedUntil = 1e9;
  device.silence();
  EXPECT_THROW(transfer(u"F/3/"), embedding::StillWaiting) << "it is tried without end";
  clock.now = 0;
  run(*driver, "DisConnect_", u"");
  EXPECT_EQ(Result, 1);
}

TEST_F(Link, ASilentDeviceShowsTheWaitWindow) {
  for (const bool suppressed : {true, false}) {
    SupressError_ = suppressed;
    device.silence(3).answer("00/00/00/");
    moduleState().call = {};
    screen.waits.clear();
    run(*driver, "FeedPaper", Short{3});
    EXPECT_EQ(outcome(), "0 00/00/00/");
    const std::vector<std::string> window = {
        "Μήνυμα Ταμειακής (Varlen Fiscal)|Κατάσταση [-4]|Ο Φορολ. Εκτυπωτής δεν Απαντά σε εντολή !", "close"};
    EXPECT_EQ(screen.waits, suppressed ? std::vector<std::string>{} : window);
    // Four times a second from the third second on; from the tenth on where there is a window.
    EXPECT_NEAR(screen.servings, suppressed ? 112 : 32, 3);
    EXPECT_NEAR(screen.eventRounds, suppressed ? 0 : 80, 3);
    screen.servings = 0;
    EXPECT_FALSE(isWaitShown());
  }
}

TEST_F(Link, AnAckThatCouldNotBeWrittenIsWrittenAgain) {
  serial.failingAcks = 1;
  transfer(u"F/3/");
  serial.sent.clear();
  serial.unpluggedFrom = clock.now;
  serial.unpluggedUntil = clock.now + 1;
  transfer(u"F/3/");
  EXPECT_THAT(sent(), ElementsAre(kAck, kCan, kCan, kEnq, framed("F/3/15"), kAck));
  serial.failingAcks = 1;
  transfer(u"F/3/");
  run(*driver, "DisConnect_", u"");
  connect(u"COM1");
  serial.sent.clear();
  transfer(u"F/3/");
  EXPECT_EQ(sent().front(), kCan) << "forgotten";
  connectNetwork();
  for (const int failing : {1, 2}) {
    sockets.sent.clear();
    sockets.failingAcks = failing;
    transfer(u"v/");
    EXPECT_EQ(Result, 0);
    EXPECT_EQ(sockets.sent.size(), failing == 1 ? 3U : 2U) << "once more, at once";
  }
}

// Two adapters may have changed their names, and something else may sit on the line.
TEST_F(Link, WhoAnswersALineThatCameBackIsAsked) {
  const std::string own = "00/00/00/MVE1/", other = "00/00/00/MVE2/", stranger = "-1 Πρόβλημα στην Θύρα :COM1";
  called = std::make_shared<fiscalTrevikModule>();
  moduleState().fiscalType = FISCAL_VARLENFISCAL2;
  screen.expectsWaits = true;
  const auto unplug = [this] {
    serial.unpluggedFrom = clock.now;
    serial.unpluggedUntil = clock.now + 1;
  };
  const auto restart = [&](bool isKnown) {
    run(*driver, "DisConnect_", u"");
    device.script.clear();
    driver = std::make_shared<FiscalVarlenModule2>();
    connect(u"COM1");
    Text number;
    if (isKnown) device.answer(own);
    if (isKnown) run(*driver, "getSerialNumber", number);
    unplug();
  };
  const std::tuple<const char*, Strings, Strings, std::string> cases[] = {
      {"the same register", {"00/00/00/", own}, {"p/1/", "a/"}, "0 00/00/00/"},
      {"another one", {"00/00/00/", other}, {"p/1/", "a/"}, stranger},
      {"one that does not tell", {"00/00/00/", "0E/00/00/"}, {"p/1/", "a/"}, "0 00/00/00/"},
      {"behind a wait", {"9E/00/00/", "9E/00/00/", "00/00/00/", other}, {"p/1/", "?/", "?/", "a/"}, stranger},
      {"no register", {"  0.250kg", "p/1/25", "p/1/25"}, {"p/1/", "p/1/", "p/1/"}, "-3 H ταμειακή δεν Απαντά!"},
      {"noise, then the same", {"  0.250kg", "00/00/00/", own}, {"p/1/", "p/1/", "a/"}, "0 00/00/00/"}};
  for (const auto& [what, replies, commands, told] : cases) {
    SCOPED_TRACE(what);
    restart(true);
    for (const std::string& reply : replies) device.answer(reply);
    EXPECT_EQ(call("DrawerOpen"), commands);
    EXPECT_EQ(outcome(), told);
    EXPECT_EQ(driver->session.lastReply().substr(0, 2), told == stranger || told[0] == '0' ? u"00" : u"");
  }
  restart(true);
  device.answer("00/00/00/").answer(other);
  EXPECT_EQ(call("VoidReceipt").size(), 2U);
  EXPECT_EQ(outcome(), stranger) << "to the call's end";
  EXPECT_THAT(call("DrawerOpen"), IsEmpty());
  EXPECT_EQ(outcome(), "-6 Κλειστή θύρα");
  // Two seconds of silence tell nothing, and it is asked once more behind the next answer.
  restart(true);
  device.answer("00/00/00/").silence();
  const double begin = clock.now;
  EXPECT_THAT(call("DrawerOpen"), ElementsAre("p/1/", "a/"));
  EXPECT_NEAR(clock.now - begin, 4, 0.5) << "the line's second look, and the two seconds";
  device.answer("00/00/00/").answer(own);
  EXPECT_THAT(call("DrawerOpen"), ElementsAre("p/1/", "a/"));
  EXPECT_THAT(call("DrawerOpen"), ElementsAre("p/1/"));
  restart(false);
  EXPECT_THAT(call("DrawerOpen"), ElementsAre("p/1/")) << "nothing is known to hold it against";
}

TEST_F(Link, WhenAFrameGoesOutAgainOnALineThatFailed) {
  const struct {
    const char16_t* command;
    Short timeOut;
    double again;
  } cases[] = {{u"F/3/", 0, 10}, {u"F/3/", 60, 10}, {u"5/1/", 60, 60}, {u"E/2/1/", 0, 10}};
  for (const auto& [command, timeOut, again] : cases) {
    device.silence();
    const double begin = clock.now;
    serial.unpluggedFrom = begin + 1;
    serial.unpluggedUntil = begin + 4;
    serial.opened.clear();
    transfer(command, timeOut);
    EXPECT_NEAR(clock.now - begin, again, 0.7) << toUtf8(command) << timeOut;
    EXPECT_EQ(serial.opened.size(), 5U) << "looked for every two seconds";
  }
  // A slow line that takes nothing for a while is none that failed, until it takes nothing three times.
  for (const int attempts : {2, 3}) {
    serial.opened.clear();
    serial.takesNothing = attempts * 4;
    device.commands.clear();
    EXPECT_EQ(transfer(u"F/3/"), "00/00/00/");
    EXPECT_EQ(serial.opened.size(), attempts == 3 ? 1U : 0U);
    EXPECT_THAT(device.commands, ElementsAre("F/3/"));
  }
}

// The wait window, for every exchange of every member, and in front of the window that stands.
TEST_F(Link, SilenceIsSeenWhereverItIs) {
  const std::string silence =
      "Μήνυμα Ταμειακής (Varlen Fiscal)|Κατάσταση [-4]|Ο Φορολ. Εκτυπωτής δεν Απαντά σε εντολή !";
  const auto facade = std::make_shared<fiscalTrevikModule>();
  called = facade;
  screen.expectsWaits = true;
  const auto pay = [&] { call("Payment", 1, u"CASH", 1.0, 0, 0); };
  const std::tuple<const char*, std::vector<std::string>, std::function<void()>> cases[] = {
      {"the v/ behind a payment", {"", "0.00/", ""}, pay},
      {"the end of the server's dialogue",
       {""},
       [&] {
         Text pass;
         facade->call("setServerSettings", Byte{1}, u"a|b", u"80", u"key", Result, Exresult, SupressError_, pass);
       }},
      {"the journal", {"42/"}, [&] { call("issueZReport"); }},
      {"the closing", {"42/", "3//"}, [&] { call("issueZReport"); }}};
  for (const bool suppressed : {false, true}) {
    SupressError_ = suppressed;
    for (const auto& [what, replies, member] : cases) {
      SCOPED_TRACE(what);
      answers(replies);
      device.silence(1);
      answers({"3//"});
      screen.waits.clear();
      screen.servings = screen.eventRounds = 0;
      member();
      EXPECT_EQ(screen.waits, suppressed ? std::vector<std::string>{} : (std::vector<std::string>{silence, "close"}));
      EXPECT_GE(screen.servings, 28) << "from the third second on";
      device.script.clear();
    }
  }
  SupressError_ = true;
  device.answer("9E/00/00/").silence(1).answer("9C/00/00/");
  screen.waits.clear();
  call("DrawerOpen");
  ASSERT_EQ(screen.waits.size(), 2U);
  EXPECT_EQ(screen.waits[1], silence) << "in the window that stands";
}

}  // namespace
}  // namespace mirvane::test
