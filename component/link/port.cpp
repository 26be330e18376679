#include "link/port.h"

#include <optional>

#include "link/network_endpoint.h"
#include "link/network_transport.h"
#include "link/open_port.h"
#include "link/serial_line.h"
#include "link/serial_transport.h"
#include "state/message_catalogue.h"
#include "state/module_state.h"
#include "text/text.h"

namespace mirvane {
namespace {

// The port on which a different register was found, and the call that found it.
struct Stranger {
  Text port;
  std::uint64_t call = 0;
};

struct NetworkName {
  Text host;
  std::int32_t port;
  std::int32_t localPort;
};

std::optional<std::int32_t> numberUpTo(TextView digits, std::int32_t most) {
  if (digits.empty() || digits.size() > 5 || digits.find_first_not_of(u"0123456789") != TextView::npos) return {};
  const auto value = static_cast<std::int32_t>(parseNumber(digits).value_or(0));
  if (value > most) return {};
  return value;
}

// "192.168.1.50:9100" or "192.168.1.50:9100:5000": address, port and optionally the local port.
std::optional<NetworkName> parseNetworkName(TextView name) {
  const std::vector<Text> parts = split(name, u':');
  if (parts.size() < 2 || parts.size() > 3) return {};
  const std::vector<Text> octets = split(parts[0], u'.');
  if (octets.size() != 4) return {};
  // Formatted again, because the system reads a number with a leading zero as octal.
  Text host;
  for (const Text& octet : octets) {
    const auto value = numberUpTo(octet, 255);
    if (!value) return {};
    host += (host.empty() ? u"" : u".") + numberText(*value);
  }
  const auto port = numberUpTo(parts[1], 65535);
  const auto localPort = parts.size() == 3 ? numberUpTo(parts[2], 65535) : 0;
  if (!port || !localPort) return {};
  return NetworkName{host, *port, *localPort};
}

Reply cannotOpen(const Text& name) { return {link_result::kCannotOpen, Text(link_result::kCannotOpenText) + name}; }

bool openNetwork(const NetworkName& name) {
  const std::shared_ptr<cTCPIP> endpoint = portProp().TCPClass();
  endpoint->RemoteHostIP(name.host);
  endpoint->RemotePort(name.port);
  const bool opened = endpoint->OpenConnection(name.localPort) == 0;
  if (endpoint->SocketHnd() > 0) {
    // Marked as the open port even if connecting failed, so that closing it cleans up.
    portProp().tcpPort = true;
    thePort().handle = endpoint->SocketHnd();
  } else {
    portProp().setTCPClass(nullptr);
  }
  return opened;
}

}  // namespace

Reply openPort(const Text& name) {
  if (thePort().isOpen()) return {};
  startRecord();
  const auto network = parseNetworkName(name);
  Reply outcome;
  if (!(network ? openNetwork(*network) : openSerialLine(name))) {
    outcome = cannotOpen(name);
  }
  // Also tried on a port that did not open: the caller gets this step's failure.
  if (!network && !configureSerialLine()) {
    outcome = {link_result::kCannotConfigure, langMessage(message::kPortNotConfigured) + name};
  }
  if (!outcome.succeeded()) closePort();
  return outcome;
}

std::int16_t closePort() {
  if (!thePort().isOpen()) return 0;
  bool closed = true;
  if (portProp().tcpPort) {
    portProp().TCPClass()->ShutdownConnection();
    portProp().setTCPClass(nullptr);
    portProp().tcpPort = false;
  } else {
    closed = closeSerialLine();
  }
  thePort() = {};
  return closed ? 1 : 0;
}

Reply refuseStranger() {
  const Text name = thePort().name;
  closePort();
  kept<Stranger>() = {name, moduleState().call.number};
  return cannotOpen(name);
}

Reply closedPort() {
  const Stranger& stranger = kept<Stranger>();
  if (!stranger.port.empty() && stranger.call == moduleState().call.number) return cannotOpen(stranger.port);
  return {link_result::kNotOpen, langMessage(message::kPortNotOpen)};
}

Transport& transport() {
  static SerialTransport serial;
  static NetworkTransport network;
  if (portProp().tcpPort) return network;
  return serial;
}

}  // namespace mirvane
