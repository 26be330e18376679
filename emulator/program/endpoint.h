#pragma once

#include <boost/asio/error.hpp>
#include <boost/asio/ip/address.hpp>
#include <charconv>
#include <stdexcept>
#include <string>

namespace mirvane::emulator {

/// `text` as "PORT", on 127.0.0.1, or "ADDRESS:PORT". Throws std::invalid_argument that names the `option`.
template <class Endpoint>
Endpoint parseEndpoint(const std::string& option, const std::string& text) {
  const std::size_t colon = text.rfind(':');
  const std::string host = colon == std::string::npos ? "127.0.0.1" : text.substr(0, colon);
  const std::string digits = colon == std::string::npos ? text : text.substr(colon + 1);
  std::uint16_t port = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
  boost::system::error_code problem;
  const auto address = boost::asio::ip::make_address_v4(host, problem);
  if (problem || error != std::errc() || end != digits.data() + digits.size()) {
    throw std::invalid_argument(option + " " + text + ": not [ADDRESS:]PORT");
  }
  return {address, port};
}

/// Why an address cannot be opened.
inline std::string reasonOf(const boost::system::error_code& error) {
  return error == boost::asio::error::address_in_use ? "another program has this port" : error.message();
}

}  // namespace mirvane::emulator
