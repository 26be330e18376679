#include <cstring>

#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

class Connection : public ComponentTest {
 protected:
  void connect(TextView port) { run(*driver, "Connect_", port); }
  std::shared_ptr<FiscalVarlenModule2> driver = std::make_shared<FiscalVarlenModule2>();
};

TEST_F(Connection, SetsTheSerialLineUp) {
  connect(u"COM1");
  EXPECT_EQ(Result, 0);
  EXPECT_EQ(exresult(), "");
  EXPECT_THAT(serial.opened, ElementsAre("COM1"));
  EXPECT_EQ(moduleState().portHandle, 40);
  EXPECT_EQ(serial.settings, "115200,n,8,1");
  const auto& t = serial.timeouts;
  EXPECT_EQ(std::tuple(t.readInterval, t.readMultiplier, t.readConstant, t.writeMultiplier, t.writeConstant),
            std::tuple(20u, 1u, 1u, 1u, 10u));
  EXPECT_THAT(serial.sent, IsEmpty()) << "connecting asks the device nothing";
}

TEST_F(Connection, AnOpenPortIsKept) {
  connect(u"COM1");
  serial.settings.clear();
  for (const TextView port : {u"COM1", u"COM9", u"", u"10.0.0.5:9100"}) {
    connect(port);
    EXPECT_EQ(Result, 0);
    EXPECT_EQ(exresult(), "");
  }
  EXPECT_EQ(serial.opened.size(), 1u);
  EXPECT_EQ(serial.settings, "");
  EXPECT_THAT(sockets.calls, IsEmpty());
}

TEST_F(Connection, DisconnectReports1AndThen0) {
  connect(u"COM1");
  run(*driver, "DisConnect_", u"COM1");
  EXPECT_EQ(Result, 1);
  EXPECT_THAT(serial.closed, ElementsAre(40));
  EXPECT_EQ(moduleState().portHandle, 0);
  run(*driver, "DisConnect_", u"COM1");
  EXPECT_EQ(Result, 0);
  EXPECT_EQ(serial.closed.size(), 1u);
  connect(u"COM1");
  EXPECT_EQ(Result, 0);
}

TEST_F(Connection, PortsAbove9AreTriedUnderTheirLongName) {
  struct Case {
    const char *port, *existing;
    std::vector<std::string> opened;
    Short result;
  };
  const Case cases[] = {{"COM10", "\\\\.\\COM10", {"COM10", "\\\\.\\COM10"}, 0},
                        {"COM10", "COM10", {"COM10"}, 0},
                        {"COM12", "", {"COM12", "\\\\.\\COM12"}, -2},
                        {"COMX", "", {"COMX"}, -2},
                        {"COM", "", {"COM"}, -2},
                        {"COM1x", "", {"COM1x"}, -2},
                        {"/dev/ttyS0", "/dev/ttyS0", {"/dev/ttyS0"}, 0}};
  for (const auto& [port, existing, opened, result] : cases) {
    serial.ports = {existing};
    serial.opened.clear();
    connect(fromUtf8(port));
    EXPECT_EQ(Result, result) << port;
    EXPECT_EQ(serial.opened, opened);
    run(*driver, "DisConnect_", u"");
  }
}

TEST_F(Connection, FailuresLeaveNothingOpenAndShowNothing) {
  SupressError_ = false;
  for (const bool exists : {false, true}) {
    serial.takesSettings = !exists;
    connect(exists ? u"COM1" : u"COM7");
    EXPECT_EQ(Result, -2);
    EXPECT_EQ(exresult(), exists ? "Ρύθμιση :COM1" : "Ρύθμιση :COM7");
    EXPECT_LE(moduleState().portHandle, 0);
    EXPECT_EQ(std::ranges::count(serial.closed, 40), exists ? 1 : 0);
  }
  serial.takesSettings = true;
  serial.takesTimeouts = false;
  connect(u"COM1");
  EXPECT_EQ(Result, 0) << "time-outs are not checked";
  EXPECT_THAT(screen.boxes, IsEmpty());
}

TEST_F(Connection, OpensTheNetworkEndpoint) {
  struct Case {
    const char16_t* port;
    std::vector<std::string> calls;
  };
  const Case cases[] = {{u"10.0.0.5:9100", {"create", "bind 0", "connect 10.0.0.5:9100"}},
                        {u"255.0.0.1:65535", {"create", "bind 0", "connect 255.0.0.1:65535"}},
                        {u"10.0.0.5:1:5000", {"create", "bind 5000", "connect 10.0.0.5:1"}}};
  for (const auto& [port, calls] : cases) {
    sockets.calls.clear();
    connect(port);
    EXPECT_EQ(Result, 0);
    EXPECT_EQ(sockets.calls, calls);
    EXPECT_TRUE(portProp().tcpPort);
    EXPECT_TRUE(portProp().isConnected);
    EXPECT_EQ(portProp().TCPClass()->SocketHnd(), 50);
    EXPECT_EQ(moduleState().portHandle, 50);
    sockets.calls.clear();
    run(*driver, "DisConnect_", u"");
    EXPECT_EQ(Result, 1);
    EXPECT_THAT(sockets.calls, ElementsAre("shutDown 50"));
    EXPECT_FALSE(portProp().tcpPort);
    EXPECT_EQ(portProp().TCPClass()->SocketHnd(), 0);
    EXPECT_EQ(moduleState().portHandle, 0);
    run(*driver, "DisConnect_", u"");
    EXPECT_EQ(Result, 0);
  }
  EXPECT_THAT(serial.opened, IsEmpty());
  EXPECT_THAT(serial.closed, IsEmpty());
}

TEST_F(Connection, WhatIsNoNetworkNameIsASerialPort) {
  for (const char* name : {"COM1:",
                           "1.2.3.4",
                           "1.2.3.4:",
                           "256.1.1.1:5",
                           "1.2.3.4:99999",
                           "1.2.3:5",
                           "1.2.3.4.5:5",
                           "a.b.c.d:5",
                           "1.2.3.4:5x",
                           "1.2.3.4:-5",
                           "1.2.3.4:5:",
                           "1.2.3.4:5:x",
                           "1.2.3.4:5:99999",
                           "1.2.3.4:5:6:7",
                           ":5",
                           "1.2..4:5",
                           "1.2.3.4 :5",
                           ":",
                           "",
                           "1.2.3.4:4294967301"}) {
    serial.opened.clear();
    connect(fromUtf8(name));
    EXPECT_EQ(Result, -2) << name;
    EXPECT_EQ(exresult(), std::string("Ρύθμιση :") + name);
    EXPECT_THAT(serial.opened, ElementsAre(name));
    EXPECT_THAT(sockets.calls, IsEmpty()) << name;
    EXPECT_LE(moduleState().portHandle, 0);
    EXPECT_FALSE(portProp().tcpPort);
  }
}

TEST_F(Connection, ANetworkThatCannotBeOpenedLeavesNothingOpen) {
  for (const char* failing : {"startUp", "create", "bind", "connect"}) {
    SCOPED_TRACE(failing);
    sockets.failing = failing;
    sockets.calls.clear();
    connect(u"10.0.0.5:9100");
    EXPECT_EQ(Result, -1);
    EXPECT_EQ(exresult(), "Πρόβλημα στην Θύρα :10.0.0.5:9100");
    EXPECT_LE(moduleState().portHandle, 0);
    EXPECT_FALSE(portProp().tcpPort);
    if (std::string("bind") == failing || std::string("connect") == failing) {
      EXPECT_EQ(sockets.calls.back(), "shutDown 50");
    }
  }
  sockets.failing = "";
  connect(u"COM1");
  EXPECT_EQ(Result, 0);
  EXPECT_EQ(moduleState().portHandle, 40);
}

class Version : public DriverTest {
 protected:
  void getVersion(const std::string& reply) {
    device.answer(reply);
    SupressError_ = false;
    Result = 77;
    driver->call("GetVersionInfo", Result, Exresult, SupressError_, Pass);
  }
};

TEST_F(Version, TellsOfDeviceDriverAndComponent) {
  struct Case {
    const char *reply, *firstLines;
  };
  const Case cases[] = {{"00/00/00/MODEL X/1.2/345/", "MODEL X\r\n1.2[345]"},
                        {"00/00/00/M/1/2/more/", "M\r\n1[2]"},
                        {"00/04/00/M/1/2/", "M\r\n1[2]"},
                        {"00/00/00/M/", "M\r\n[]"},
                        {"00/00/00/", "\r\n[]"},
                        {"00", "\r\n[]"}};
  for (const auto& [reply, firstLines] : cases) {
    getVersion(reply);
    EXPECT_EQ(Result, 0);
    EXPECT_THAT(exresult(), testing::StartsWith(firstLines + std::string("\r\n"))) << reply;
    EXPECT_THAT(exresult().substr(std::strlen(firstLines)),
                testing::MatchesRegex("\r\n[0-9]+\\.[0-9]+\\.[0-9]+\r\nMirvaneEFT"));
  }
  EXPECT_EQ(device.commands, std::vector<std::string>(std::size(cases), "v/"));
}

TEST_F(Version, AFailureIsToldAsItIsAndShowsNothing) {
  getVersion("0E/00/00/");
  EXPECT_EQ(Result, 14);
  EXPECT_EQ(exresult(), "Απασχολημένο σε άλλη λειτουργία");
  EXPECT_THAT(device.commands, ElementsAre("v/")) << "no wait and no retry";
  EXPECT_THAT(screen.boxes, IsEmpty());
}

}  // namespace
}  // namespace mirvane::test
