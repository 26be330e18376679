#include <chrono>
#include <thread>

#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

const Box kSendFailed{"Λάθος κατά την αποστολή δεδομένων στην θύρα (Ethernet)", 16, "Varlen Fiscal"};
const Box kReadFailed{"Λάθος κατά την ανάγνωση στοιχείων απο την θύρα (Ethernet)", 16, "Varlen Fiscal"};

class TcpClient : public ComponentTest {
 protected:
  Value open(Long localPort = 0) {
    put(*client, "RemoteHostIP", Text(u"10.0.0.5"));
    put(*client, "RemotePort", Long{70000});
    return client->call("OpenConnection", localPort);
  }

  std::shared_ptr<cTCPIP> client = std::make_shared<cTCPIP>();
};

TEST_F(TcpClient, OpeningTellsHowFarItCame) {
  // Ports are narrowed to 16 bits.
  const std::vector<std::string> calls = {"create", "bind 5000", "connect 10.0.0.5:4464"};
  for (const auto& [failing, code, made] :
       {std::tuple("", 0, 3u), {"startUp", -1, 0u}, {"create", -2, 1u}, {"bind", -4, 2u}, {"connect", -6, 3u}}) {
    client = std::make_shared<cTCPIP>();
    kept<std::shared_ptr<cPortProp>>() = nullptr;
    sockets.failing = failing;
    sockets.calls.clear();
    EXPECT_EQ(open(65536 + 5000), Value(static_cast<Short>(code)));
    EXPECT_EQ(sockets.calls, std::vector(calls.begin(), calls.begin() + made)) << failing;
    EXPECT_EQ(portProp().isConnected, made == 3) << failing;
  }
  EXPECT_THAT(screen.boxes, IsEmpty());
}

TEST_F(TcpClient, ShutDownAndReleaseCloseWhatIsOpen) {
  for (const char* failing : {"", "bind", "connect"}) {
    client = std::make_shared<cTCPIP>();
    sockets.failing = failing;
    open();
    EXPECT_EQ(client->call("SocketHnd"), Value(Long{50}));
    sockets.calls.clear();
    client = nullptr;
    EXPECT_THAT(sockets.calls, ElementsAre("shutDown 50")) << failing;
  }
  client = std::make_shared<cTCPIP>();
  open();
  client->call("ShutdownConnection");
  sockets.calls.clear();
  client = nullptr;
  EXPECT_THAT(sockets.calls, IsEmpty()) << "closed already";
}

TEST_F(TcpClient, SendsOneDatagramInTheCodePage) {
  open();
  EXPECT_EQ(client->call("SendData", u"Αά€日"), Value(true));
  EXPECT_EQ(client->call("SendData", TextView(u"a\0b", 3)), Value(true));
  EXPECT_THAT(sockets.sent, ElementsAre("\xC1\xDC\x80?", std::string("a\0b", 3)));
  EXPECT_THAT(screen.boxes, IsEmpty());
  sockets.failing = "send";
  EXPECT_EQ(client->call("SendData", u"x"), Value(false));
  EXPECT_THAT(screen.boxes, ElementsAre(kSendFailed));
}

TEST_F(TcpClient, ReceivesOneDatagram) {
  open();
  Value data = Text(u"before"), count = Short{3};
  EXPECT_EQ(client->call("ReceiveData", data, count), Value(false));
  EXPECT_EQ(std::tuple(data, count), std::tuple(Value(Text(u"before")), Value(Short{3})));
  EXPECT_THAT(sockets.waits, ElementsAre(0)) << "a pure poll";
  sockets.inbox.add({{"\xC1\x80z"}, {""}, {std::string("a\0b", 3)}, {std::string(10000, 'm')}});
  for (const Text& text : {Text(u"Α€z"), Text(), Text(u"a\0b", 3), Text(10000, u'm')}) {
    EXPECT_EQ(client->call("ReceiveData", data, count), Value(true));
    EXPECT_EQ(data, Value(text));
    EXPECT_EQ(count, Value(static_cast<Long>(text.size())));
  }
  EXPECT_THAT(screen.boxes, IsEmpty());
  // A failed read is told whatever the caller wants.
  for (const std::size_t size : {10001u, 5u}) {
    if (size == 5) sockets.failing = "receive";
    screen.boxes.clear();
    sockets.inbox.add({{std::string(size, 'x')}});
    EXPECT_EQ(client->call("ReceiveData", data, count), Value(false)) << size;
    EXPECT_EQ(std::tuple(data, count), std::tuple(Value(Text()), Value(Short{0})));
    EXPECT_THAT(screen.boxes, ElementsAre(kReadFailed));
  }
}

TEST_F(TcpClient, AVariableThatCannotTakeTheDataIsRefusedAndTheDataStays) {
  open();
  sockets.inbox.add({{"x"}});
  Long number = 7;
  Short count = 7;
  Value data, empty;
  EXPECT_EQ(errorOf([&] { client->call("ReceiveData", number, count); }), kTypeMismatch);
  EXPECT_EQ(client->call("ReceiveData", data, empty), Value(true));
  EXPECT_EQ(std::tuple(number, count, data, empty), std::tuple(7, 7, Value(Text(u"x")), Value(Long{1})));
  data = empty = {};
  EXPECT_EQ(client->call("ReceiveData", data, empty), Value(false));
  EXPECT_EQ(std::tuple(data, empty), std::tuple(Value(), Value())) << "their types stay too";
}

// The system's own sockets: what it tells of a datagram that met nobody is no data.
TEST(DatagramSockets, WaitForDataThoughNobodyWasThere) {
  platform::DatagramSockets& sockets = platform::hostPlatform().sockets;
  std::uint16_t port = 20000;
  const auto bound = [&] {
    sockets.startUp();
    const std::int32_t socket = sockets.create().value_or(-1);
    while (!sockets.bind(socket, port)) ++port;
    return std::pair(socket, port++);
  };
  const auto [device, devicePort] = bound();
  const auto [till, tillPort] = bound();
  sockets.shutDown(device);
  sockets.connect(till, "127.0.0.1", devicePort);
  sockets.send(till, "nobody hears this");
  std::thread answer([&sockets, devicePort = devicePort, tillPort = tillPort] {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    sockets.startUp();
    const std::int32_t late = sockets.create().value_or(-1);
    sockets.bind(late, devicePort);
    sockets.connect(late, "127.0.0.1", tillPort);
    sockets.send(late, "here");
    sockets.shutDown(late);
  });
  EXPECT_TRUE(sockets.waitReadable(till, 20));
  EXPECT_EQ(sockets.receive(till, 100), "here");
  answer.join();
  sockets.shutDown(till);
}

TEST_F(TcpClient, WaitsForDataAsLongAsItIsTold) {
  open();
  EXPECT_EQ(client->call("IsDataAvailable"), Value(false));
  EXPECT_EQ(client->call("IsDataAvailable", Short{5}), Value(false));
  EXPECT_THAT(sockets.waits, ElementsAre(1, 5));
  sockets.inbox.add({{"x", 0.5}});
  EXPECT_EQ(client->call("IsDataAvailable"), Value(true));
}

}  // namespace
}  // namespace mirvane::test
