// The small web server: what it reads, what it answers, and that it outlives its clients and its handlers.
#include <gtest/gtest.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>

#include "http/request_reader.h"
#include "http/server.h"

namespace mirvane::http {
namespace {

using boost::asio::ip::tcp;

class HttpServer : public testing::Test {
 protected:
  tcp::socket connect() {
    tcp::socket socket(clients_);
    const std::string url = server_.url();
    const auto port = static_cast<std::uint16_t>(std::stoi(url.substr(url.rfind(':') + 1)));
    socket.connect({boost::asio::ip::make_address("127.0.0.1"), port});
    return socket;
  }
  void send(tcp::socket& socket, const std::string& bytes) {
    boost::asio::write(socket, boost::asio::buffer(bytes));
    // Until nothing is left to do at once.
    while (loop_.poll() > 0) continue;
  }
  /// Everything up to the end of the connection.
  std::string ask(const std::string& bytes) {
    tcp::socket socket = connect();
    send(socket, bytes);
    socket.shutdown(tcp::socket::shutdown_send);
    socket.non_blocking(true);
    std::string answer;
    boost::system::error_code error;
    for (char piece[4096]; error != boost::asio::error::eof;) {
      loop_.poll();
      answer.append(piece, socket.read_some(boost::asio::buffer(piece), error));
      if (error && error != boost::asio::error::would_block && error != boost::asio::error::eof) break;
    }
    return answer;
  }

  boost::asio::io_context loop_, clients_;
  std::string asked_;
  Server server_{loop_, Endpoint("--web", "0"), Server::Options{.origins = {"https://till.shop"}},
                 [this](Request& request) -> Answer {
                   asked_ += request.method + request.path + request.body + " ";
                   if (request.path == "/odd") throw std::out_of_range("odd");
                   if (request.path == "/wait") return {204, "", "", {}, 1000};
                   return json(Json{{"path", request.path}});
                 }};
};

std::string get(const std::string& path) { return "GET " + path + " HTTP/1.1\r\nHost: localhost\r\n\r\n"; }

TEST_F(HttpServer, PagesFromListedOriginsMayAskAndReadTheAnswer) {
  const auto told = [this](const std::string& method, const std::string& origin) {
    return ask(method + " /a HTTP/1.1\r\nHost: localhost\r\nOrigin: " + origin +
               "\r\nAccess-Control-Request-Method: PUT\r\n\r\n");
  };
  const struct {
    std::string method, origin, status;
    bool isAllowed, tellsMethods, isHandled;
  } kCases[] = {{"OPTIONS", "https://till.shop", "204", true, true, false},
                {"GET", "https://till.shop", "200", true, false, true},
                {"GET", "https://TILL.shop", "200", true, false, true},
                {"OPTIONS", "https://evil.example", "403", false, false, false},
                {"GET", "https://till.shop.evil.example", "403", false, false, false},
                {"GET", "null", "403", false, false, false}};
  for (const auto& row : kCases) {
    asked_.clear();
    const std::string answer = told(row.method, row.origin);
    EXPECT_EQ(answer.substr(9, 3), row.status) << row.method << " " << row.origin;
    EXPECT_EQ(answer.find("Access-Control-Allow-Origin: " + row.origin) != std::string::npos, row.isAllowed);
    EXPECT_EQ(answer.find("Access-Control-Allow-Methods") != std::string::npos, row.tellsMethods);
    EXPECT_EQ(!asked_.empty(), row.isHandled);
  }
}

TEST_F(HttpServer, WhateverAHandlerThrowsIsAnAnswer) {
  const std::string answer = ask(get("/odd"));
  EXPECT_TRUE(answer.starts_with("HTTP/1.1 500 ") && answer.find("\"odd\"") != std::string::npos) << answer;
  EXPECT_TRUE(ask(get("/a")).starts_with("HTTP/1.1 200 "));
}

TEST_F(HttpServer, RequestsFollowEachOtherHoweverTheyAreCut) {
  const std::string both = get("/a") + "POST /b HTTP/1.1\r\nHost: localhost\r\nContent-Length: 2\r\n\r\nhi" + get("/c");
  for (std::size_t cut = 0; cut <= both.size(); cut += 7) {
    asked_.clear();
    tcp::socket socket = connect();
    send(socket, both.substr(0, cut));
    send(socket, both.substr(cut));
    EXPECT_EQ(asked_, "GET/a POST/bhi GET/c ") << cut;
  }
}

TEST_F(HttpServer, AClientThatLeavesIsNotWaitedFor) {
  std::vector<tcp::socket> waiting;
  for (int i = 0; i < 250; ++i) send(waiting.emplace_back(connect()), get("/wait"));
  EXPECT_TRUE(ask(get("/a")).starts_with("HTTP/1.1 503 "));
  waiting.clear();
  while (loop_.poll() > 0) continue;
  EXPECT_TRUE(ask(get("/a")).starts_with("HTTP/1.1 200 "));
}

TEST(HttpEndpoint, IsAnAddressOrANameAndAPort) {
  const std::tuple<std::string, std::string, int> rows[] = {{"81", "127.0.0.1", 81},
                                                            {"0.0.0.0:0", "0.0.0.0", 0},
                                                            {"[::1]:65535", "::1", 65535},
                                                            {"localhost:5", "127.0.0.1", 5}};
  for (const auto& [text, address, port] : rows) {
    const Endpoint endpoint("--web", text);
    EXPECT_EQ(endpoint.address, address) << text;
    EXPECT_EQ(endpoint.port, port) << text;
  }
  for (const char* text : {"", ":", "65536", "::1:80", "[::1]", "127.0.0.1:", "a b:1", "-1"}) {
    EXPECT_THROW(Endpoint("--web", text), std::invalid_argument) << text;
  }
}

}  // namespace
}  // namespace mirvane::http
