#pragma once

#include "automation/object.h"
#include "platform/ports.h"

namespace mirvane {

/// The network endpoint to one register. Despite its name it is a datagram socket, bound to all local interfaces and
/// connected to the register. Set RemoteHostIP and RemotePort, call OpenConnection, then send, poll and receive.
class cTCPIP : public ObjectOf<cTCPIP> {
 public:
  static constexpr std::string_view kName = "cTCPIP";
  static const ClassInfo& describe();

  ~cTCPIP() override;

  /// The socket; 0 when none is open.
  std::int32_t SocketHnd() { return socket_; }

  /// Opens the endpoint on local port `nPort`; 0 lets the system choose. Returns 0; -1 if the socket library does not
  /// start, -2 without a socket, -4 if the local port cannot be bound, -6 if the remote address cannot be connected.
  /// After a failure, ShutdownConnection or the release cleans up.
  std::int16_t OpenConnection(std::int32_t nPort);

  /// Reads one waiting datagram: its text, and its length in bytes. Returns False and changes neither if none is
  /// waiting; returns False, "" and 0 after the message box if reading fails.
  bool ReceiveData(Value& strData, Value& lngBytesReceived);
  /// Sends the text as one datagram in the register's code page. Returns False after the message box if that fails.
  bool SendData(Text strData);

  /// The same two in bytes, for the link: a failure is reported at the end of the program's call. No bytes means that
  /// nothing was received.
  std::string receiveBytes();
  bool sendBytes(std::string_view bytes);

  /// Whether a datagram arrives within `iTM` seconds; 0 does not wait.
  bool IsDataAvailable(std::int16_t& iTM);

  void ShutdownConnection();

  void RemotePort(std::int32_t value) { remotePort_ = value; }
  /// Dotted-decimal IPv4.
  void RemoteHostIP(Text value) { remoteHost_ = std::move(value); }
  /// Stored but not used: the endpoint always binds to all local interfaces.
  void LocalHostIP(Text value) { localHost_ = std::move(value); }

  /// Always empty: results alone report failures.
  Text ErrorDescription() { return {}; }
  /// Always 0.
  std::int32_t ErrorCode() { return 0; }

 private:
  std::int16_t open(std::int32_t localPort, platform::SystemError& reason);
  bool send(std::string_view bytes);
  std::optional<std::string> receive();
  /// "192.168.1.50:9100"
  Text name() const;

  std::int32_t socket_ = 0;
  std::int32_t remotePort_ = 0;
  Text localHost_;
  Text remoteHost_;
};

/// Properties of the link that the drivers and the network endpoint share.
struct cPortProp : ObjectOf<cPortProp> {
  static constexpr std::string_view kName = "cPortProp";
  static const ClassInfo& describe();

  bool tcpPort{};  ///< the register is on the network
  std::int32_t comHandle{};
  bool isConnected{};

  /// The network endpoint, created if there is none, so never Nothing.
  std::shared_ptr<cTCPIP> TCPClass() {
    if (tcpClass_ == nullptr) tcpClass_ = std::make_shared<cTCPIP>();
    return tcpClass_;
  }
  void setTCPClass(std::shared_ptr<cTCPIP> value) { tcpClass_ = std::move(value); }

 private:
  std::shared_ptr<cTCPIP> tcpClass_;
};

/// The component's shared properties, created on first use.
cPortProp& portProp();

}  // namespace mirvane
