#include "http/request_reader.h"

#include <algorithm>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>
#include <utility>

namespace mirvane::http {
namespace {

namespace beast = boost::beast::http;

std::map<std::string, std::string> parseQuery(std::string_view text) {
  std::map<std::string, std::string> query;
  while (!text.empty()) {
    text.remove_prefix(1);
    const std::string_view pair = text.substr(0, text.find('&'));
    const std::size_t equals = std::min(pair.find('='), pair.size());
    std::string value(pair.substr(std::min(equals + 1, pair.size())));
    // As forms and the libraries of most languages write a blank.
    std::replace(value.begin(), value.end(), '+', ' ');
    if (!pair.empty()) query[decoded(pair.substr(0, equals))] = decoded(value);
    text.remove_prefix(pair.size());
  }
  return query;
}

}  // namespace

struct RequestReader::Parser : beast::request_parser<beast::string_body> {
  bool isAwaiting = true;
};

RequestReader::RequestReader() : parser_(std::make_unique<Parser>()) {
  parser_->eager(true);
  parser_->body_limit(kLongestBody);
}

RequestReader::~RequestReader() = default;

std::size_t RequestReader::take(std::string_view bytes) {
  boost::system::error_code error;
  const std::size_t taken = parser_->put(boost::asio::const_buffer(bytes.data(), bytes.size()), error);
  if (!error || error == beast::error::need_more) return taken;
  if (error == beast::error::body_limit) {
    problem_.emplace(413, "a body has at most 65536 bytes");
  } else if (error == beast::error::header_limit) {
    problem_.emplace(431, "too much above the body");
  } else {
    problem_.emplace(400, "no HTTP: " + error.message());
  }
  return taken;
}

bool RequestReader::isWhole() const { return parser_->is_done(); }

bool RequestReader::awaitsContinue() {
  if (!parser_->is_header_done() || parser_->is_done()) return false;
  return std::exchange(parser_->isAwaiting, false) &&
         boost::beast::iequals(parser_->get()[beast::field::expect], "100-continue");
}

Request RequestReader::request() const {
  const auto& message = parser_->get();
  Request request{message.method_string(), {}, {}, {}, message.body(), message.keep_alive()};
  const std::string_view target(message.target().data(), message.target().size());
  const std::size_t mark = std::min(target.find('?'), target.size());
  request.path = decoded(target.substr(0, mark));
  request.query = parseQuery(target.substr(mark));
  for (const auto& field : message) {
    std::string name(field.name_string());
    for (char& c : name) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    request.headers[name] = std::string(field.value());
  }
  return request;
}

}  // namespace mirvane::http
