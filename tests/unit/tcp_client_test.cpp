#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

const Box kSendFailed{"Λάθος κατά την αποστολή δεδομένων στην θύρα (Ethernet)", 16, "Varlen Fiscal"};
const Box kReadFailed{"Λάθος κατά την ανάγνωση στοιχείων απο την θύρα (Ethernet)", 16, "Varlen Fiscal"};

class TcpClient : public ComponentTest {
 protected:
  void put(const char* property, Value value) {
    const Argument argument[] = {Argument(std::move(value))};
    client->invoke(property, ClassInfo::Access::write, argument);
  }
  Value open(Long localPort = 0) {
    put("RemoteHostIP", Text(u"10.0.0.5"));
    put("RemotePort", Long{9100});
    put("LocalHostIP", Text(u"192.168.0.1"));
    return client->call("OpenConnection", localPort);
  }

  std::shared_ptr<cTCPIP> client = std::make_shared<cTCPIP>();
};

TEST_F(TcpClient, OpeningTellsHowFarItCame) {
  struct Case {
    const char* failing;
    Short code;
    bool isConnected;
    std::vector<std::string> calls;
  };
  const Case cases[] = {{"", 0, true, {"create", "bind 5000", "connect 10.0.0.5:9100"}},
                        {"startUp", -1, false, {}},
                        {"create", -2, false, {"create"}},
                        {"bind", -4, false, {"create", "bind 5000"}},
                        {"connect", -6, true, {"create", "bind 5000", "connect 10.0.0.5:9100"}}};
  for (const auto& [failing, code, isConnected, calls] : cases) {
    client = std::make_shared<cTCPIP>();
    moduleState().portProp = nullptr;
    sockets.failing = failing;
    sockets.calls.clear();
    EXPECT_EQ(open(5000), Value(code));
    EXPECT_EQ(sockets.calls, calls) << failing;
    EXPECT_EQ(portProp().isConnected, isConnected) << failing;
    EXPECT_EQ(client->call("ErrorCode"), Value(Long{0}));
    EXPECT_EQ(client->call("ErrorDescription"), Value(Text()));
  }
  EXPECT_THAT(screen.boxes, IsEmpty());
}

TEST_F(TcpClient, PortsAreNarrowedTo16Bits) {
  put("RemoteHostIP", Text(u"register"));
  put("RemotePort", Long{70000});
  client->call("OpenConnection", Long{65536 + 7});
  EXPECT_THAT(sockets.calls, ElementsAre("create", "bind 7", "connect register:4464"));
}

TEST_F(TcpClient, ShutDownAndReleaseCloseWhatIsOpen) {
  client = nullptr;
  EXPECT_THAT(sockets.calls, IsEmpty()) << "never opened";
  for (const char* failing : {"", "bind", "connect"}) {
    client = std::make_shared<cTCPIP>();
    sockets.failing = failing;
    open();
    EXPECT_EQ(client->call("SocketHnd"), Value(Long{50}));
    sockets.calls.clear();
    client = nullptr;
    EXPECT_THAT(sockets.calls, ElementsAre("shutDown 50")) << failing;
  }
  sockets.failing = "";
  client = std::make_shared<cTCPIP>();
  open();
  client->call("ShutdownConnection");
  EXPECT_EQ(client->call("SocketHnd"), Value(Long{0}));
  EXPECT_EQ(open(), Value(Short{0})) << "it may be opened again";
  client->call("ShutdownConnection");
  sockets.calls.clear();
  client = nullptr;
  EXPECT_THAT(sockets.calls, IsEmpty()) << "closed already";
}

TEST_F(TcpClient, SendsOneDatagramInTheCodePage) {
  open();
  EXPECT_EQ(client->call("SendData", u"Αά€日"), Value(true));
  EXPECT_EQ(client->call("SendData", u""), Value(true));
  EXPECT_EQ(client->call("SendData", TextView(u"a\0b", 3)), Value(true));
  EXPECT_THAT(sockets.sent, ElementsAre("\xC1\xDC\x80?", "", std::string("a\0b", 3)));
  EXPECT_THAT(screen.boxes, IsEmpty());
  sockets.failing = "send";
  EXPECT_EQ(client->call("SendData", u"x"), Value(false));
  EXPECT_THAT(screen.boxes, ElementsAre(kSendFailed));
}

TEST_F(TcpClient, ReceivesOneDatagram) {
  open();
  Value data = Text(u"before"), count = Short{3};
  EXPECT_EQ(client->call("ReceiveData", data, count), Value(false));
  EXPECT_EQ(data, Value(Text(u"before")));
  EXPECT_EQ(count, Value(Short{3}));
  EXPECT_THAT(sockets.waits, ElementsAre(0)) << "a pure poll";

  sockets.inbox.add({{"\xC1\x80z"}, {""}, {std::string("a\0b", 3)}, {std::string(10000, 'm')}});
  const Text texts[] = {u"Α€z", u"", Text(u"a\0b", 3), Text(10000, u'm')};
  for (const Text& text : texts) {
    EXPECT_EQ(client->call("ReceiveData", data, count), Value(true));
    EXPECT_EQ(data, Value(text));
    EXPECT_EQ(count, Value(static_cast<Long>(text.size())));
  }
  EXPECT_THAT(screen.boxes, IsEmpty());

  Text typedData;
  Short typedCount = 0;
  sockets.inbox.add({{"ok"}});
  EXPECT_EQ(client->call("ReceiveData", typedData, typedCount), Value(true));
  EXPECT_EQ(typedData, u"ok");
  EXPECT_EQ(typedCount, 2);
}

TEST_F(TcpClient, AFailedReadIsToldWhateverTheCallerWants) {
  open();
  for (const std::size_t size : {10001u, 5u}) {
    if (size == 5) sockets.failing = "receive";
    screen.boxes.clear();
    Value data = Text(u"before"), count;
    sockets.inbox.add({{std::string(size, 'x')}});
    EXPECT_EQ(client->call("ReceiveData", data, count), Value(false)) << size;
    EXPECT_EQ(data, Value(Text()));
    EXPECT_EQ(count, Value(Short{0}));
    EXPECT_THAT(screen.boxes, ElementsAre(kReadFailed));
  }
}

TEST_F(TcpClient, WaitsForDataAsLongAsItIsTold) {
  open();
  EXPECT_EQ(client->call("IsDataAvailable"), Value(false));
  EXPECT_EQ(client->call("IsDataAvailable", 0), Value(false));
  EXPECT_EQ(client->call("IsDataAvailable", Short{5}), Value(false));
  EXPECT_THAT(sockets.waits, ElementsAre(1, 0, 5));
  sockets.inbox.add({{"x", 0.5}});
  EXPECT_EQ(client->call("IsDataAvailable"), Value(true));
}

}  // namespace
}  // namespace mirvane::test
