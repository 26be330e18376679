#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/udp.hpp>

#include "emulator/program/pump.h"
#include "http/endpoint.h"

namespace mirvane::emulator {
namespace {

using boost::asio::ip::udp;

class Udp : public Pump {
 public:
  Udp(const std::string& text, const Wiring& wiring)
      : Pump(wiring), socket_(wiring.loop), endpoint_(endpointOf("--udp", text)) {
    open();
  }

  std::string address() const override { return "udp=" + nameOf(endpoint_); }

 private:
  static udp::endpoint endpointOf(const std::string& option, const std::string& text) {
    const http::Endpoint endpoint(option, text);
    return {boost::asio::ip::make_address(endpoint.address), endpoint.port};
  }
  static std::string nameOf(const udp::endpoint& endpoint) { return http::nameOf(endpoint.address(), endpoint.port()); }

  void open() {
    try {
      socket_.open(endpoint_.protocol());
      socket_.bind(endpoint_);
      endpoint_ = socket_.local_endpoint();
    } catch (const boost::system::system_error& error) {
      throw TransportError(address() + ": " + http::reasonOf(error.code()));
    }
    receive();
  }

  void receive() {
    const auto done = [this, before = unpluggings()](const boost::system::error_code& error, std::size_t count) {
      if (error == boost::asio::error::operation_aborted || unpluggings() != before) return;
      // Any other error only means that an earlier datagram was refused.
      if (!error) arrived({buffer_.data(), count}, nameOf(sender_));
      if (unpluggings() == before) receive();
    };
    socket_.async_receive_from(boost::asio::buffer(buffer_), sender_, done);
  }

  void vanish() override { socket_.close(); }
  void comeBack() override { open(); }

  void transmit(Outbox::Piece piece) override {
    boost::system::error_code ignored;
    const auto peer = endpointOf("peer", piece.peer);
    socket_.send_to(boost::asio::buffer(piece.bytes), peer, 0, ignored);
    transmitted();
  }

  udp::socket socket_;
  /// Where it listens, the port being the one that the system chose.
  udp::endpoint endpoint_;
  udp::endpoint sender_;
  std::array<char, 65536> buffer_{};
};

}  // namespace

std::unique_ptr<Transport> openUdp(const std::string& address, const Wiring& wiring) {
  return std::make_unique<Udp>(address, wiring);
}

}  // namespace mirvane::emulator
