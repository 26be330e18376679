#pragma once

#include "automation/object.h"
#include "platform/ports.h"

namespace mirvane {

/// The network endpoint to one device: a datagram socket, whatever the name says, bound to all local interfaces and
/// connected to the device. Set RemoteHostIP and RemotePort, call OpenConnection, then send, poll and receive.
class cTCPIP : public ObjectOf<cTCPIP> {
 public:
  static constexpr std::string_view kName = "cTCPIP";
  static const ClassInfo& describe();

  ~cTCPIP() override;

  /// The socket; 0 when none is open.
  std::int32_t SocketHnd() { return socket_; }

  /// Opens the endpoint on local port `nPort` (0: the system's choice). 0 when open; -1 the socket library did not
  /// start, -2 no socket, -4 the local port cannot be bound, -6 the remote address cannot be connected. What a failure
  /// left behind is cleaned up by ShutdownConnection or on release.
  std::int16_t OpenConnection(std::int32_t nPort);

  /// Takes one datagram that is waiting: its text and length in bytes. False, and both untouched, when none is waiting;
  /// False, "" and 0 after the message box when reading fails.
  bool ReceiveData(Value& strData, Value& lngBytesReceived);
  /// Sends the text as one datagram in the device's code page. False after the message box when sending fails.
  bool SendData(Text strData);

  /// The same two in bytes, for the link: a failure is reported when the program's call is over. Nothing was received
  /// when there are no bytes.
  std::string receiveBytes();
  bool sendBytes(std::string_view bytes);

  /// Whether a datagram is there within `iTM` seconds; 0 does not wait.
  bool IsDataAvailable(std::int16_t& iTM);

  void ShutdownConnection();

  void RemotePort(std::int32_t value) { remotePort_ = value; }
  /// Dotted-decimal IPv4.
  void RemoteHostIP(Text value) { remoteHost_ = std::move(value); }
  /// Kept and not used: the endpoint always binds to all local interfaces.
  void LocalHostIP(Text value) { localHost_ = std::move(value); }

  /// Always empty: failures are told by the results alone.
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

  bool tcpPort{};  ///< the device is reached over the network
  std::int32_t comHandle{};
  bool isConnected{};

  /// The network endpoint; created when there is none, so never Nothing.
  std::shared_ptr<cTCPIP> TCPClass() {
    if (tcpClass_ == nullptr) tcpClass_ = std::make_shared<cTCPIP>();
    return tcpClass_;
  }
  void setTCPClass(std::shared_ptr<cTCPIP> value) { tcpClass_ = std::move(value); }

 private:
  std::shared_ptr<cTCPIP> tcpClass_;
};

/// The ones that the whole component shares, created on first use.
cPortProp& portProp();

}  // namespace mirvane
