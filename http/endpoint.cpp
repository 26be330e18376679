#include "http/endpoint.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <charconv>
#include <stdexcept>

namespace mirvane::http {
namespace {

namespace asio = boost::asio;
using Error = boost::system::error_code;

std::string_view withoutBrackets(std::string_view text) {
  return text.starts_with('[') && text.ends_with(']') ? text.substr(1, text.size() - 2) : text;
}

/// The address of `name`, of IPv4 where it has one; empty when it has none.
std::string lookUp(const std::string& name) {
  asio::io_context loop;
  Error error;
  std::string found;
  for (const auto& entry : asio::ip::tcp::resolver(loop).resolve(name, "", error)) {
    const auto address = entry.endpoint().address();
    if (found.empty() || address.is_v4()) found = address.to_string();
    if (address.is_v4()) break;
  }
  return found;
}

}  // namespace

bool isAddress(std::string_view text) {
  Error error;
  asio::ip::make_address(withoutBrackets(text), error);
  return !error;
}

Endpoint::Endpoint(const std::string& option, const std::string& text) {
  const std::size_t colon = text.rfind(':');
  const std::string host = colon == std::string::npos ? "127.0.0.1" : text.substr(0, colon);
  const std::string digits = colon == std::string::npos ? text : text.substr(colon + 1);
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
  // Without brackets, the port of an address of IPv6 could be its last group.
  const bool isAmbiguous = host.find(':') != std::string::npos && !host.starts_with('[');
  if (error != std::errc() || end != digits.data() + digits.size() || isAmbiguous) {
    throw std::invalid_argument(option + " " + text + ": not [ADDRESS:]PORT");
  }
  address = isAddress(host) ? withoutBrackets(host) : lookUp(host);
  if (address.empty()) throw std::invalid_argument(option + " " + text + ": no such address or name");
}

std::string nameOf(const asio::ip::address& address, std::uint16_t port) {
  const std::string text = address.to_string();
  return (address.is_v6() ? "[" + text + "]" : text) + ":" + std::to_string(port);
}

std::string reasonOf(const Error& error) {
  return error == asio::error::address_in_use ? "another program has this port" : error.message();
}

}  // namespace mirvane::http
