#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/udp.hpp>

#include "emulator/program/endpoint.h"
#include "emulator/program/pump.h"

namespace mirvane::emulator {
namespace {

using boost::asio::ip::udp;

class Udp : public Pump {
 public:
  Udp(const std::string& text, const Wiring& wiring) : Pump(wiring, wiring.acknowledges), socket_(wiring.loop) {
    try {
      socket_.open(udp::v4());
      socket_.bind(parseEndpoint<udp::endpoint>("udp", text));
    } catch (const boost::system::system_error& error) {
      throw TransportError("udp " + text + ": " + reasonOf(error.code()));
    }
    receive();
  }

  std::string address() const override {
    const udp::endpoint bound = socket_.local_endpoint();
    return "udp=" + bound.address().to_string() + ":" + std::to_string(bound.port());
  }

 private:
  void receive() {
    socket_.async_receive_from(boost::asio::buffer(buffer_), sender_,
                               [this](const boost::system::error_code& error, std::size_t count) {
                                 if (error == boost::asio::error::operation_aborted) return;
                                 // Any other error only tells that an earlier datagram found nobody.
                                 if (!error) {
                                   peer_ = sender_;
                                   arrived({buffer_.data(), count});
                                 }
                                 receive();
                               });
  }

  void transmit(std::string bytes) override {
    boost::system::error_code ignored;
    socket_.send_to(boost::asio::buffer(bytes), peer_, 0, ignored);
    transmitted();
  }

  udp::socket socket_;
  udp::endpoint sender_, peer_;
  std::array<char, 65536> buffer_{};
};

}  // namespace

std::unique_ptr<Transport> openUdp(const std::string& address, const Wiring& wiring) {
  return std::make_unique<Udp>(address, wiring);
}

}  // namespace mirvane::emulator
