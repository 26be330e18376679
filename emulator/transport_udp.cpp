#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>

#include "emulator/transport.h"

namespace mirvane::emulator {
namespace {

class Udp : public Transport {
 public:
  Udp(const std::string& text, Device& device, Faults& faults, bool isPaced, Line::Acknowledges acknowledges)
      : outbox_(isPaced), line_(device, faults, outbox_, acknowledges, steadySeconds) {
    sockaddr_in address = parse(text);
    socket_ = ::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    socklen_t size = sizeof address;
    if (socket_ < 0 || ::bind(socket_, reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
        ::getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
      const int error = errno;
      ::close(socket_);
      throw TransportError("udp " + text + ": " + std::strerror(error));
    }
    char dotted[INET_ADDRSTRLEN];
    ::inet_ntop(AF_INET, &address.sin_addr, dotted, sizeof dotted);
    name_ = "udp=" + std::string(dotted) + ":" + std::to_string(ntohs(address.sin_port));
  }
  ~Udp() override { ::close(socket_); }

  std::string address() const override { return name_; }
  int descriptor() const override { return socket_; }
  const Outbox& outbox() const override { return outbox_; }

  void receive() override {
    char buffer[65536];
    socklen_t size = sizeof peer_;
    const ssize_t count = ::recvfrom(socket_, buffer, sizeof buffer, 0, reinterpret_cast<sockaddr*>(&peer_), &size);
    // An error here only tells that an earlier datagram found nobody.
    if (count < 0) return;
    outbox_.received(static_cast<std::size_t>(count));
    line_.feed({buffer, static_cast<std::size_t>(count)});
  }

  bool flush() override {
    while (!outbox_.empty() && outbox_.due() <= std::chrono::steady_clock::now()) {
      const std::string_view bytes = outbox_.bytes();
      const ssize_t count =
          ::sendto(socket_, bytes.data(), bytes.size(), 0, reinterpret_cast<const sockaddr*>(&peer_), sizeof peer_);
      if (count < 0 && (errno == EAGAIN || errno == EINTR)) return false;
      outbox_.sent(bytes.size());
    }
    return true;
  }

 private:
  static sockaddr_in parse(const std::string& text) {
    const std::size_t colon = text.rfind(':');
    const std::string host = colon == std::string::npos ? "127.0.0.1" : text.substr(0, colon);
    const std::string digits = colon == std::string::npos ? text : text.substr(colon + 1);
    std::uint16_t port = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    if (error != std::errc() || end != digits.data() + digits.size() ||
        ::inet_pton(AF_INET, host.c_str(), &address.sin_addr) != 1) {
      throw std::runtime_error("udp " + text + ": not [ADDRESS:]PORT");
    }
    return address;
  }

  Outbox outbox_;
  Line line_;
  int socket_ = -1;
  std::string name_;
  sockaddr_in peer_{};
};

}  // namespace

std::unique_ptr<Transport> openUdp(const std::string& address, Device& device, Faults& faults, bool isPaced,
                                   Line::Acknowledges acknowledges) {
  return std::make_unique<Udp>(address, device, faults, isPaced, acknowledges);
}

}  // namespace mirvane::emulator
