#include "link/open_port.h"
#include "tests/fakes/component_test.h"
#include "text/code_page.h"
#include "version.h"

namespace mirvane::test {
namespace {

class Connection : public ComponentTest {
 protected:
  Short connect(TextView port) { return run(*driver, "Connect_", port), Result; }
  Short disconnect() { return run(*driver, "DisConnect_", u""), Result; }
  void expectClosed() const {
    EXPECT_LE(thePort().handle, 0);
    EXPECT_FALSE(portProp().tcpPort);
  }
  std::shared_ptr<FiscalVarlenModule2> driver = std::make_shared<FiscalVarlenModule2>();
};

TEST_F(Connection, SetsTheSerialLineUpOnce) {
  connect(u"COM1");
  EXPECT_EQ(outcome(), "0 ");
  EXPECT_EQ(serial.settings, "115200,n,8,1");
  const auto& t = serial.timeouts;
  EXPECT_EQ(std::tuple(t.readInterval, t.readMultiplier, t.readConstant, t.writeMultiplier, t.writeConstant),
            std::tuple(20u, 1u, 1u, 1u, 10u));
  EXPECT_THAT(serial.sent, IsEmpty()) << "connecting asks the device nothing";
  for (const TextView port : {u"COM1", u"COM9", u"", u"10.0.0.5:9100"}) EXPECT_EQ(connect(port), 0);
  EXPECT_THAT(serial.opened, ElementsAre("COM1"));
  EXPECT_THAT(sockets.calls, IsEmpty());
  EXPECT_EQ(disconnect(), 1);
  EXPECT_EQ(disconnect(), 0);
  EXPECT_THAT(serial.closed, ElementsAre(40));
  expectClosed();
  EXPECT_EQ(connect(u"COM1"), 0);
}

TEST_F(Connection, PortsAbove9AreTriedUnderTheirLongName) {
  const std::tuple<const char*, const char*, std::vector<std::string>, Short> cases[] = {
      {"COM10", "\\\\.\\COM10", {"COM10", "\\\\.\\COM10"}, 0},
      {"COM12", "", {"COM12", "\\\\.\\COM12"}, -2},
      {"COM1x", "", {"COM1x"}, -2},
      {"/dev/ttyS0", "/dev/ttyS0", {"/dev/ttyS0"}, 0}};
  for (const auto& [port, existing, opened, result] : cases) {
    serial.ports = {existing};
    serial.opened.clear();
    EXPECT_EQ(connect(fromUtf8(port)), result) << port;
    EXPECT_EQ(serial.opened, opened);
    disconnect();
  }
}

TEST_F(Connection, FailuresLeaveNothingOpenAndShowNothing) {
  SupressError_ = false;
  connect(u"COM7");
  EXPECT_EQ(outcome(), "-2 Ρύθμιση :COM7");
  serial.takesSettings = false;
  EXPECT_EQ(connect(u"COM1"), -2);
  expectClosed();
  EXPECT_THAT(serial.closed, testing::Contains(40));
  serial.takesSettings = true;
  for (const char* failing : {"startUp", "create", "bind", "connect"}) {
    SCOPED_TRACE(failing);
    sockets.failing = failing;
    sockets.calls.clear();
    connect(u"10.0.0.5:9100");
    EXPECT_EQ(outcome(), "-1 Πρόβλημα στην Θύρα :10.0.0.5:9100");
    expectClosed();
    EXPECT_EQ(std::ranges::count(sockets.calls, "shutDown 50"), std::ranges::count(sockets.calls, "bind 0"));
  }
  serial.takesTimeouts = false;
  EXPECT_EQ(connect(u"COM1"), 0) << "time-outs are not checked";
  EXPECT_THAT(screen.boxes, IsEmpty());
}

TEST_F(Connection, OpensTheNetworkEndpoint) {
  const std::tuple<const char16_t*, const char*, const char*> cases[] = {
      {u"10.0.0.5:9100", "bind 0", "connect 10.0.0.5:9100"},
      {u"255.0.0.1:65535", "bind 0", "connect 255.0.0.1:65535"},
      {u"10.0.0.5:1:5000", "bind 5000", "connect 10.0.0.5:1"}};
  for (const auto& [port, bound, connected] : cases) {
    sockets.calls.clear();
    EXPECT_EQ(connect(port), 0);
    EXPECT_TRUE(portProp().tcpPort && portProp().isConnected);
    EXPECT_EQ(thePort().handle, 50);
    EXPECT_EQ(disconnect(), 1);
    EXPECT_THAT(sockets.calls, ElementsAre("create", bound, connected, "shutDown 50"));
    EXPECT_EQ(portProp().TCPClass()->SocketHnd(), 0);
    expectClosed();
    EXPECT_EQ(disconnect(), 0);
  }
  EXPECT_THAT(serial.opened, IsEmpty());
  EXPECT_THAT(serial.closed, IsEmpty());
}

TEST_F(Connection, WhatIsNoNetworkNameIsASerialPort) {
  const char* const names =
      "COM1:|1.2.3.4|1.2.3.4:|256.1.1.1:5|1.2.3.4:99999|1.2.3:5|1.2.3.4.5:5|a.b.c.d:5|1.2.3.4:5x|1.2.3.4:-5|"
      "1.2.3.4:5:|1.2.3.4:5:x|1.2.3.4:5:99999|1.2.3.4:5:6:7|:5|1.2..4:5|1.2.3.4 :5|:|1.2.3.4:4294967301";
  for (const Text& name : split(fromUtf8(names), u'|')) {
    serial.opened.clear();
    EXPECT_EQ(connect(name), -2) << toUtf8(name);
    EXPECT_THAT(serial.opened, ElementsAre(toUtf8(name)));
    EXPECT_THAT(sockets.calls, IsEmpty()) << toUtf8(name);
    expectClosed();
  }
}

class Version : public DriverTest {};

TEST_F(Version, TellsOfDeviceDriverAndComponent) {
  SupressError_ = false;
  for (const auto& [reply, firstLines] : {std::pair("00/00/00/MODEL X/1.2/345/", "MODEL X\r\n1.2[345]"),
                                          {"00/04/00/M/1/2/more/", "M\r\n1[2]"},
                                          {"00/00/00/", "\r\n[]"}}) {
    device.answer(reply);
    run(*driver, "GetVersionInfo");
    EXPECT_EQ(outcome(), std::string("0 ") + firstLines + "\r\n" MIRVANE_VERSION "\r\n" MIRVANE_PRODUCT) << reply;
  }
  device.answer("0E/00/00/");
  run(*driver, "GetVersionInfo");
  EXPECT_EQ(outcome(), "14 Απασχολημένο σε άλλη λειτουργία");
  EXPECT_EQ(device.commands, std::vector<std::string>(4, "v/")) << "no wait and no retry";
  EXPECT_THAT(screen.boxes, IsEmpty());
}

}  // namespace
}  // namespace mirvane::test
