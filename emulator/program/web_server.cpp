#include "emulator/program/web_server.h"

#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <set>

#include "emulator/program/endpoint.h"
#include "emulator/program/system.h"
#include "emulator/program/transport.h"

namespace mirvane::emulator {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using boost::asio::ip::tcp;
using Error = boost::system::error_code;
using namespace std::chrono_literals;

constexpr std::uint64_t kLongestBody = 65'536;
constexpr std::size_t kMostSessions = 100;
constexpr auto kIdle = 30s;
constexpr auto kHeartbeat = 15s;
/// Changes within this time are told as one.
constexpr auto kCalm = 20ms;

/// `host` as the Host field names it, without the port.
std::string withoutPort(std::string_view host) {
  const std::size_t end = host.starts_with('[') ? host.find(']') + 1 : host.find(':');
  return std::string(host.substr(0, end));
}

/// A name that was made to lead here may be anybody's; an address or "localhost" is what it says.
bool isOwnHost(std::string_view host) {
  std::string name = withoutPort(host);
  if (name == "localhost") return true;
  if (name.starts_with('[') && name.ends_with(']')) name = name.substr(1, name.size() - 2);
  Error problem;
  asio::ip::make_address(name, problem);
  return !problem;
}

std::string decoded(std::string_view text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned value = 0;
    const char* digits = text.data() + i + 1;
    if (text[i] == '%' && i + 2 < text.size() && std::from_chars(digits, digits + 2, value, 16).ptr == digits + 2) {
      bytes.push_back(static_cast<char>(value));
      i += 2;
    } else {
      bytes.push_back(text[i]);
    }
  }
  return bytes;
}

Request parseRequest(const http::request<http::string_body>& message) {
  Request request{message.method_string(), {}, {}, message.body()};
  std::string_view target(message.target().data(), message.target().size());
  request.path = decoded(target.substr(0, target.find('?')));
  target.remove_prefix(std::min(target.find('?'), target.size()));
  while (!target.empty()) {
    target.remove_prefix(1);
    const std::string_view pair = target.substr(0, target.find('&'));
    const std::size_t equals = std::min(pair.find('='), pair.size());
    request.query[decoded(pair.substr(0, equals))] = decoded(pair.substr(std::min(equals + 1, pair.size())));
    target.remove_prefix(pair.size());
  }
  return request;
}

}  // namespace

/// What the sessions share.
struct WebServer::Hub : std::enable_shared_from_this<Hub> {
  class Session;

  Hub(asio::io_context& loop, Handler handle) : acceptor(loop), calm(loop), handler(std::move(handle)) {}

  void accept();
  void announce();

  tcp::acceptor acceptor;
  asio::steady_timer calm;
  bool isAnnouncing = false;
  unsigned changes = 0;
  Handler handler;
  std::set<std::shared_ptr<Session>> sessions;
};

/// One connection: request after request, or a stream of events.
class WebServer::Hub::Session : public std::enable_shared_from_this<Session> {
  using Handler = void (Session::*)(const Error&, std::size_t);

  /// A handler that keeps the session alive.
  auto bound(Handler handler) {
    return [self = shared_from_this(), handler](const Error& error, std::size_t count) {
      (self.get()->*handler)(error, count);
    };
  }

 public:
  Session(std::shared_ptr<Hub> hub, tcp::socket socket)
      : hub_(std::move(hub)), stream_(std::move(socket)), timer_(stream_.get_executor()) {}

  void read() {
    parser_.emplace();
    parser_->body_limit(kLongestBody);
    stream_.expires_after(kIdle);
    http::async_read(stream_, buffer_, *parser_, bound(&Session::readDone));
  }

  void close() {
    timer_.cancel();
    Error ignored;
    stream_.socket().shutdown(tcp::socket::shutdown_both, ignored);
    stream_.close();
    hub_->sessions.erase(shared_from_this());
  }

  /// Something has changed.
  void wake() {
    if (isListener_) {
      tellChange();
    } else if (isWaiting_) {
      Answer answer = hub_->handler(waitingRequest_);
      if (answer.waitSeconds <= 0) endWait(std::move(answer));
    }
  }

 private:
  void readDone(const Error& error, std::size_t /*count*/) {
    if (error == http::error::body_limit) return refuse(413, "a body has at most 65536 bytes");
    if (error == http::error::header_limit) return refuse(431, "too much above the body");
    if (error.category() == http::make_error_code(http::error::end_of_stream).category() &&
        error != http::error::end_of_stream && error != http::error::partial_message) {
      return refuse(400, "no HTTP: " + error.message());
    }
    if (error) return close();
    const auto& message = parser_->get();
    const std::string host(message[http::field::host]);
    if (!isOwnHost(host)) return refuse(403, "only as localhost or by address, not as \"" + host + "\"");
    const auto origin = message.find(http::field::origin);
    if (origin != message.end() && origin->value() != "http://" + host) {
      return refuse(403, "not for pages from elsewhere");
    }
    Request request = parseRequest(message);
    if (request.path == "/api/v1/events") {
      if (request.method != "GET") return send(problem(405, "only GET"));
      return listen();
    }
    Answer answer = hub_->handler(request);
    if (answer.waitSeconds <= 0) return send(std::move(answer));
    wait(std::move(request), answer.waitSeconds);
  }

  void refuse(int status, const std::string& text) {
    isLast_ = true;
    send(problem(status, text));
  }

  // ---- An answer that is waited for

  void wait(Request request, double seconds) {
    isWaiting_ = true;
    waitingRequest_ = std::move(request);
    stream_.expires_never();
    timer_.expires_after(std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::duration<double>(seconds)));
    timer_.async_wait([self = shared_from_this()](const Error& error) {
      if (!error && self->isWaiting_) self->endWait(self->hub_->handler(self->waitingRequest_));
    });
  }

  void endWait(Answer answer) {
    isWaiting_ = false;
    timer_.cancel();
    send(std::move(answer));
  }

  void send(Answer answer) {
    response_.emplace(static_cast<http::status>(answer.status), 11);
    response_->set(http::field::server, "mirvane-emulator");
    const bool isText = answer.type.starts_with("text/");
    if (!answer.body.empty())
      response_->set(http::field::content_type, answer.type + (isText ? "; charset=utf-8" : ""));
    response_->set(http::field::cache_control, "no-store");
    response_->set("X-Content-Type-Options", "nosniff");
    response_->set("Content-Security-Policy", "default-src 'self'; frame-ancestors 'none'");
    response_->keep_alive(!isLast_ && parser_->is_done() && parser_->get().keep_alive());
    response_->body() = std::move(answer.body);
    response_->prepare_payload();
    stream_.expires_after(kIdle);
    http::async_write(stream_, *response_, bound(&Session::sent));
  }

  void sent(const Error& error, std::size_t /*count*/) {
    if (error || !response_->keep_alive()) return close();
    read();
  }

  // ---- Events

  void listen() {
    isListener_ = true;
    isWriting_ = true;
    event_ =
        "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nCache-Control: no-store\r\n"
        "X-Content-Type-Options: nosniff\r\nConnection: close\r\n\r\nretry: 1000\n\n";
    write();
    // Nothing is expected; the end of the connection shows here.
    stream_.expires_never();
    stream_.async_read_some(buffer_.prepare(1), bound(&Session::listenerGone));
    beat();
  }

  void listenerGone(const Error& /*error*/, std::size_t /*count*/) { close(); }

  void beat() {
    timer_.expires_after(kHeartbeat);
    timer_.async_wait([self = shared_from_this()](const Error& error) {
      if (error) return;
      // Since the last beat, nothing has left: nobody reads any more.
      if (self->isWriting_) return self->close();
      self->event_ = ":\n\n";
      self->write();
      self->beat();
    });
  }

  /// One event is under way at a time, so that a listener who does not read costs nothing.
  void tellChange() {
    isBehind_ = isWriting_;
    if (isWriting_) return;
    event_ = "data: {\"change\": " + std::to_string(hub_->changes) + "}\n\n";
    write();
  }

  void write() {
    isWriting_ = true;
    asio::async_write(stream_.socket(), asio::buffer(event_), bound(&Session::eventSent));
  }

  void eventSent(const Error& error, std::size_t /*count*/) {
    if (error) return close();
    isWriting_ = false;
    if (isBehind_) tellChange();
  }

  std::shared_ptr<Hub> hub_;
  beast::tcp_stream stream_;
  asio::steady_timer timer_;
  beast::flat_buffer buffer_;
  std::optional<http::request_parser<http::string_body>> parser_;
  std::optional<http::response<http::string_body>> response_;
  bool isLast_ = false;
  bool isWaiting_ = false;
  Request waitingRequest_;
  bool isListener_ = false;
  bool isWriting_ = false;
  bool isBehind_ = false;
  std::string event_;
};

void WebServer::Hub::accept() {
  acceptor.async_accept([self = shared_from_this()](const Error& error, tcp::socket socket) {
    if (error == asio::error::operation_aborted) return;
    if (!error && self->sessions.size() < kMostSessions) {
      const auto session = std::make_shared<Session>(self, std::move(socket));
      self->sessions.insert(session);
      session->read();
    }
    self->accept();
  });
}

void WebServer::Hub::announce() {
  if (isAnnouncing) return;
  isAnnouncing = true;
  calm.expires_after(kCalm);
  calm.async_wait([self = shared_from_this()](const Error& error) {
    if (error) return;
    self->isAnnouncing = false;
    ++self->changes;
    // A session that closes leaves the set.
    const auto awake = self->sessions;
    for (const auto& session : awake) session->wake();
  });
}

WebServer::WebServer(asio::io_context& loop, const std::string& address, Handler handler)
    : hub_(std::make_shared<Hub>(loop, std::move(handler))) {
  const auto endpoint = parseEndpoint<tcp::endpoint>("web", address);
  try {
    hub_->acceptor.open(endpoint.protocol());
    hub_->acceptor.set_option(tcp::acceptor::reuse_address(mayReusePorts()));
    hub_->acceptor.bind(endpoint);
    hub_->acceptor.listen();
  } catch (const boost::system::system_error& error) {
    throw TransportError("web " + address + ": " + reasonOf(error.code()));
  }
  hub_->accept();
}

WebServer::~WebServer() {
  try {
    hub_->acceptor.close();
    const auto sessions = hub_->sessions;
    for (const auto& session : sessions) session->close();
  } catch (...) {
    // The program ends: what cannot be closed goes with it.
  }
}

std::string WebServer::url() const {
  const tcp::endpoint bound = hub_->acceptor.local_endpoint();
  return "http://" + bound.address().to_string() + ":" + std::to_string(bound.port()) + "/";
}

void WebServer::changed() { hub_->announce(); }

}  // namespace mirvane::emulator
