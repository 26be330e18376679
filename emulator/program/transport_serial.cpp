#include <boost/asio/serial_port.hpp>

#include "emulator/program/stream_transport.h"
#include "protocol/wire.h"

namespace mirvane::emulator {
namespace {

using Port = boost::asio::serial_port;

class Serial : public StreamTransport<Port> {
 public:
  Serial(std::string path, const Wiring& wiring) : StreamTransport(wiring), loop_(wiring.loop), path_(std::move(path)) {
    open();
  }

 private:
  void open() {
    Port port(loop_);
    try {
      port.open(path_);
      port.set_option(Port::baud_rate(wire::kBaud));
      port.set_option(Port::character_size(8));
      port.set_option(Port::parity(Port::parity::none));
      port.set_option(Port::stop_bits(Port::stop_bits::one));
      port.set_option(Port::flow_control(Port::flow_control::none));
    } catch (const boost::system::system_error& error) {
      throw TransportError("serial " + path_ + ": " + error.code().message());
    }
    begin("serial=" + path_, std::move(port));
  }
  void comeBack() override { open(); }

  boost::asio::io_context& loop_;
  const std::string path_;
};

}  // namespace

std::unique_ptr<Transport> openSerial(const std::string& path, const Wiring& wiring) {
  return std::make_unique<Serial>(path, wiring);
}

}  // namespace mirvane::emulator
