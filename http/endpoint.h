#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace boost::asio::ip {
class address;
}
namespace boost::system {
class error_code;
}

// Where a server listens, for any protocol.
namespace mirvane::http {

/// Whether `text` is a numeric address: 127.0.0.1, ::1, [::1].
bool isAddress(std::string_view text);

/// "PORT", on 127.0.0.1, or "HOST:PORT": a numeric address (IPv6 in brackets), or a name, which is resolved. Throws
/// std::invalid_argument that names the `option`.
struct Endpoint {
  Endpoint(const std::string& option, const std::string& text);

  std::string address;
  std::uint16_t port = 0;
};

/// In the form that Endpoint reads.
std::string nameOf(const boost::asio::ip::address& address, std::uint16_t port);

/// Why an address cannot be opened.
std::string reasonOf(const boost::system::error_code& error);

}  // namespace mirvane::http
