#include <boost/asio/serial_port.hpp>

#include "emulator/program/stream_transport.h"
#include "protocol/wire.h"

namespace mirvane::emulator {

std::unique_ptr<Transport> openSerial(const std::string& path, const Wiring& wiring) {
  using Port = boost::asio::serial_port;
  Port port(wiring.loop);
  try {
    port.open(path);
    port.set_option(Port::baud_rate(wire::kBaud));
    port.set_option(Port::character_size(8));
    port.set_option(Port::parity(Port::parity::none));
    port.set_option(Port::stop_bits(Port::stop_bits::one));
    port.set_option(Port::flow_control(Port::flow_control::none));
  } catch (const boost::system::system_error& error) {
    throw TransportError("serial " + path + ": " + error.code().message());
  }
  return std::make_unique<StreamTransport<Port>>("serial=" + path, std::move(port), wiring);
}

}  // namespace mirvane::emulator
