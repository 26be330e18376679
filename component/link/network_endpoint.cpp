#include "link/network_endpoint.h"

#include "state/module_state.h"
#include "text/code_page.h"
#include "text/number_text.h"

namespace mirvane {
namespace {

using recorder::EventKind;

constexpr std::size_t kMostBytes = 10000;
// The handle that programs see for a socket that could not be created.
constexpr std::int32_t kInvalidSocket = -1;

platform::DatagramSockets& sockets() { return moduleState().platform->sockets; }

constexpr TextView kCannotSend = u"Λάθος κατά την αποστολή δεδομένων στην θύρα (Ethernet)";
constexpr TextView kCannotReceive = u"Λάθος κατά την ανάγνωση στοιχείων απο την θύρα (Ethernet)";

// Shown even if the caller suppresses errors: this class has no switch for it.
void report(TextView prompt) { showBox(prompt, platform::kCritical, kDeviceFamilyName); }

// A box within an exchange would let program code run in the middle of it, and there would be one per attempt.
void reportLater(TextView prompt) {
  TextView& failure = moduleState().call.networkFailure;
  if (failure.empty()) failure = prompt;
}

}  // namespace

cTCPIP::~cTCPIP() {
  if (socket_ != 0) ShutdownConnection();
}

std::int16_t cTCPIP::OpenConnection(std::int32_t nPort) {
  if (socket_ != 0) ShutdownConnection();
  platform::SystemError reason;
  const std::int16_t failure = open(nPort, reason);
  recordPort(EventKind::kOpen, name(), reason);
  return failure;
}

std::int16_t cTCPIP::open(std::int32_t localPort, platform::SystemError& reason) {
  const auto refused = [&reason](auto&& attempt) {
    if (!attempt) reason = std::move(attempt.reason);
    return !attempt;
  };
  if (refused(sockets().startUp())) return -1;
  auto created = sockets().create();
  socket_ = created.value_or(kInvalidSocket);
  if (refused(created)) return -2;
  if (refused(sockets().bind(socket_, static_cast<std::uint16_t>(localPort)))) return -4;
  const bool isRefused =
      refused(sockets().connect(socket_, toCodePage(remoteHost_), static_cast<std::uint16_t>(remotePort_)));
  // Set even if connecting failed: from now on the link counts as open, and a bad address shows at the first send.
  portProp().isConnected = true;
  return isRefused ? -6 : 0;
}

Text cTCPIP::name() const { return remoteHost_ + u":" + numberText(remotePort_); }

bool cTCPIP::send(std::string_view bytes) {
  const auto sent = sockets().send(socket_, bytes);
  if (sent) {
    recordBytes(EventKind::kSent, bytes);
  } else {
    recordPort(EventKind::kBroken, name(), sent.reason);
  }
  return static_cast<bool>(sent);
}

bool cTCPIP::SendData(Text strData) {
  const bool isSent = send(toCodePage(strData));
  if (!isSent) report(kCannotSend);
  return isSent;
}

bool cTCPIP::sendBytes(std::string_view bytes) {
  const bool isSent = send(bytes);
  if (!isSent) reportLater(kCannotSend);
  return isSent;
}

bool cTCPIP::IsDataAvailable(std::int16_t& iTM) { return sockets().waitReadable(socket_, iTM); }

// One datagram; nothing if reading fails.
std::optional<std::string> cTCPIP::receive() {
  auto datagram = sockets().receive(socket_, kMostBytes);
  if (datagram) recordBytes(EventKind::kReceived, *datagram);
  return datagram;
}

std::string cTCPIP::receiveBytes() {
  if (!sockets().waitReadable(socket_, 0)) return {};
  const auto datagram = receive();
  if (!datagram) reportLater(kCannotReceive);
  return datagram.value_or(std::string());
}

bool cTCPIP::ReceiveData(Value& strData, Value& lngBytesReceived) {
  if (!sockets().waitReadable(socket_, 0)) return false;
  const auto datagram = receive();
  if (!datagram) {
    report(kCannotReceive);
    strData = Text();
    lngBytesReceived = std::int16_t{0};
    return false;
  }
  strData = fromCodePage(*datagram);
  lngBytesReceived = static_cast<std::int32_t>(datagram->size());
  return true;
}

void cTCPIP::ShutdownConnection() {
  // If we did not start the socket library, we must not shut it down: the program may use it itself.
  if (socket_ == 0) return;
  sockets().shutDown(socket_);
  record(EventKind::kClose, 0, name());
  socket_ = 0;
}

const ClassInfo& cTCPIP::describe() {
  static const ClassInfo info =
      ClassBuilder<cTCPIP>()
          .readOnly("SocketHnd", &cTCPIP::SocketHnd)
          .method("OpenConnection", &cTCPIP::OpenConnection, {"nPort"})
          .method("ReceiveData", &cTCPIP::ReceiveData,
                  {output("strData", TypeKind::text), output("lngBytesReceived", TypeKind::integer32)})
          .method("SendData", &cTCPIP::SendData, {"strData"})
          .method("IsDataAvailable", &cTCPIP::IsDataAvailable, {optional("iTM", std::int16_t{1})})
          .method("ShutdownConnection", &cTCPIP::ShutdownConnection)
          .writeOnly("RemotePort", &cTCPIP::RemotePort)
          .writeOnly("RemoteHostIP", &cTCPIP::RemoteHostIP)
          .writeOnly("LocalHostIP", &cTCPIP::LocalHostIP)
          .readOnly("ErrorDescription", &cTCPIP::ErrorDescription)
          .readOnly("ErrorCode", &cTCPIP::ErrorCode)
          .build();
  return info;
}

const ClassInfo& cPortProp::describe() {
  static const ClassInfo info = ClassBuilder<cPortProp>()
                                    .property("tcpPort", &cPortProp::tcpPort)
                                    .property("comHandle", &cPortProp::comHandle)
                                    .property("TCPClass", &cPortProp::TCPClass, &cPortProp::setTCPClass)
                                    .property("isConnected", &cPortProp::isConnected)
                                    .build();
  return info;
}

cPortProp& portProp() {
  auto& shared = kept<std::shared_ptr<cPortProp>>();
  if (shared == nullptr) shared = std::make_shared<cPortProp>();
  return *shared;
}

}  // namespace mirvane
