#include "http/server.h"

#include <algorithm>
#include <array>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <list>
#include <optional>

#include "http/request_reader.h"

namespace mirvane::http {
namespace {

namespace asio = boost::asio;
using boost::asio::ip::tcp;
using Error = boost::system::error_code;
using namespace std::chrono_literals;

/// For a whole request to come, and for a whole answer to be taken.
constexpr std::chrono::milliseconds kPatience = 30s;
constexpr std::chrono::milliseconds kHeartbeat = 15s;
/// For the client to close its end.
constexpr std::chrono::milliseconds kFarewell = 2s;
/// Of what a client sends ahead while its earlier request is not answered.
constexpr std::size_t kMostAhead = 2 * RequestReader::kLongestBody;

}  // namespace

/// What the sessions share.
struct Server::Hub : std::enable_shared_from_this<Hub> {
  class Session;
  using Sessions = std::list<std::shared_ptr<Session>>;

  Hub(asio::io_context& loop, Options given, Handler handle)
      : acceptor(loop), calm(loop), options(std::move(given)), handler(std::move(handle)) {}

  void accept();
  /// Whether there is room for one more, which an idle one may have made.
  bool makeRoom();
  void announce();
  Answer answerTo(Request& request) const;

  tcp::acceptor acceptor;
  asio::steady_timer calm;
  bool isAnnouncing = false;
  unsigned changes = 0;
  const Options options;
  const Handler handler;
  /// Oldest first.
  Sessions sessions;
};

/// One connection. Something is always being read, so that the client's end of it shows at once.
class Server::Hub::Session : public std::enable_shared_from_this<Session> {
 public:
  Session(std::shared_ptr<Hub> hub, tcp::socket socket)
      : hub_(std::move(hub)), socket_(std::move(socket)), timer_(socket_.get_executor()) {}

  void begin() {
    expect();
    read();
  }
  /// Asks nothing at the moment.
  bool isIdle() const { return state_ == State::kReading && ahead_.empty(); }
  void turnAway() { refuse(Refusal(503, "too many connections")); }

  void close() {
    if (state_ == State::kClosed) return;
    state_ = State::kClosed;
    timer_.cancel();
    Error ignored;
    socket_.shutdown(tcp::socket::shutdown_both, ignored);
    socket_.close(ignored);
    hub_->sessions.remove(shared_from_this());
  }

  /// Something has changed.
  void wake() {
    if (state_ == State::kStreaming) return tellChange();
    askAgain();
  }

  void askAgain() {
    if (state_ != State::kWaiting) return;
    Answer answer = hub_->answerTo(request_);
    if (answer.waitSeconds <= 0) send(answer);
  }

 private:
  enum class State { kReading, kWaiting, kAnswering, kStreaming, kLeaving, kClosed };

  // ---- What comes in

  /// A request.
  void expect() {
    state_ = State::kReading;
    reader_.emplace();
    after(kPatience, [](Session& session) { session.close(); });
  }

  void read() {
    isReading_ = true;
    socket_.async_read_some(asio::buffer(piece_), [self = shared_from_this()](const Error& error, std::size_t count) {
      self->isReading_ = false;
      self->take(error, count);
    });
  }

  void take(const Error& error, std::size_t count) {
    if (state_ == State::kClosed) return;
    if (error) {
      // A client that only has nothing more to ask still gets its answer.
      isLast_ = isGone_ = true;
      if (state_ != State::kAnswering) close();
      return;
    }
    if (!isLast_ && state_ != State::kStreaming) ahead_.append(piece_.data(), count);
    advance();
  }

  void advance() {
    if (state_ == State::kReading) parse();
    if (!isReading_ && !isGone_ && state_ != State::kClosed && ahead_.size() < kMostAhead) read();
  }

  void parse() {
    ahead_.erase(0, reader_->take(ahead_));
    if (reader_->problem()) return refuse(*reader_->problem());
    if (reader_->awaitsContinue()) write("HTTP/1.1 100 Continue\r\n\r\n");
    if (!reader_->isWhole()) return;
    request_ = reader_->request();
    isHead_ = request_.method == "HEAD";
    if (isHead_) request_.method = "GET";
    isLast_ = isLast_ || !request_.isKeptAlive;
    Answer answer = hub_->answerTo(request_);
    if (answer.isStream && !isHead_) return stream(std::move(answer));
    if (answer.waitSeconds <= 0) return send(answer);
    state_ = State::kWaiting;
    const auto wait = std::chrono::duration<double>(answer.waitSeconds);
    after(std::chrono::duration_cast<std::chrono::milliseconds>(wait),
          [](Session& session) { session.send(session.hub_->answerTo(session.request_)); });
  }

  // ---- What goes out

  /// The connection cannot go on behind it.
  void refuse(const Refusal& refusal) {
    isLast_ = true;
    send(hub_->options.refuse(refusal));
  }

  void send(const Answer& answer) {
    state_ = State::kAnswering;
    after(kPatience, [](Session& session) { session.close(); });
    write(serialized(answer, isHead_, !isLast_));
  }

  void write(std::string text) {
    out_ += text;
    if (isWriting_ || out_.empty()) return;
    isWriting_ = true;
    leaving_ = std::exchange(out_, {});
    asio::async_write(socket_, asio::buffer(leaving_),
                      [self = shared_from_this()](const Error& error, std::size_t) { self->written(error); });
  }

  void written(const Error& error) {
    isWriting_ = false;
    if (state_ == State::kClosed) return;
    if (error) return close();
    if (!out_.empty()) return write({});
    if (state_ == State::kStreaming) {
      if (std::exchange(isBehind_, false)) tellChange();
    } else if (state_ == State::kAnswering) {
      if (isLast_) return leave();
      expect();
      advance();
    }
  }

  /// A connection that is closed while something still comes in would take the answer with it.
  void leave() {
    state_ = State::kLeaving;
    Error ignored;
    socket_.shutdown(tcp::socket::shutdown_send, ignored);
    after(kFarewell, [](Session& session) { session.close(); });
    if (isGone_) close();
  }

  // ---- Events

  void stream(Answer answer) {
    state_ = State::kStreaming;
    answer.body = "retry: 1000\n\n";
    write(serialized(answer, false, false));
    beat();
  }

  void beat() {
    after(kHeartbeat, [](Session& session) {
      // Since the last beat, nothing has left: nobody reads any more.
      if (session.isWriting_) return session.close();
      session.write(":\n\n");
      session.beat();
    });
  }

  /// One event is under way at a time, so that a listener who does not read costs nothing.
  void tellChange() {
    isBehind_ = isWriting_;
    if (!isWriting_) write("data: {\"change\": " + std::to_string(hub_->changes) + "}\n\n");
  }

  /// Calls `then` when that time has passed, unless something else is to be waited for before.
  void after(std::chrono::milliseconds time, void (*then)(Session&)) {
    timer_.expires_after(time);
    timer_.async_wait([self = shared_from_this(), then, turn = ++turns_](const Error& error) {
      if (!error && turn == self->turns_ && self->state_ != State::kClosed) then(*self);
    });
  }

  const std::shared_ptr<Hub> hub_;
  tcp::socket socket_;
  asio::steady_timer timer_;
  unsigned turns_ = 0;
  State state_ = State::kReading;
  std::optional<RequestReader> reader_;
  Request request_;
  std::array<char, 8192> piece_{};
  /// Has come, and is not taken yet.
  std::string ahead_;
  bool isReading_ = false;
  bool isHead_ = false;
  bool isLast_ = false;
  bool isGone_ = false;
  std::string out_, leaving_;
  bool isWriting_ = false;
  bool isBehind_ = false;
};

void Server::Hub::accept() {
  acceptor.async_accept([self = shared_from_this()](const Error& error, tcp::socket socket) {
    if (!self->acceptor.is_open()) return;
    if (!error) {
      const bool hasRoom = self->makeRoom();
      const auto session = std::make_shared<Session>(self, std::move(socket));
      self->sessions.push_back(session);
      hasRoom ? session->begin() : session->turnAway();
    }
    self->accept();
  });
}

bool Server::Hub::makeRoom() {
  if (sessions.size() < options.mostSessions) return true;
  const auto idle =
      std::find_if(sessions.begin(), sessions.end(), [](const auto& session) { return session->isIdle(); });
  if (idle == sessions.end()) return false;
  const auto session = *idle;
  session->close();
  return true;
}

void Server::Hub::announce() {
  if (isAnnouncing) return;
  isAnnouncing = true;
  calm.expires_after(options.calm);
  calm.async_wait([self = shared_from_this()](const Error& error) {
    if (error) return;
    self->isAnnouncing = false;
    ++self->changes;
    // A session that closes leaves the list.
    const Sessions awake = self->sessions;
    for (const auto& session : awake) session->wake();
  });
}

Answer Server::Hub::answerTo(Request& request) const {
  const auto answered = [&](auto&& give) {
    try {
      return give();
    } catch (const Refusal& refusal) {
      return options.refuse(refusal);
    } catch (const std::exception& error) {
      return options.refuse(Refusal(500, error.what()));
    }
  };
  bool isLetIn = false;
  Answer answer = answered([&] {
    refuseTrespass(request, options.hosts, options.origins);
    isLetIn = true;
    return isPreflight(request) ? nothing() : handler(request);
  });
  if (isLetIn) allowOrigin(request, answer);
  return answer;
}

Server::Server(asio::io_context& loop, const Endpoint& endpoint, Options options, Handler handler)
    : hub_(std::make_shared<Hub>(loop, std::move(options), std::move(handler))) {
  const tcp::endpoint bound(asio::ip::make_address(endpoint.address), endpoint.port);
  try {
    hub_->acceptor.open(bound.protocol());
    hub_->acceptor.set_option(tcp::acceptor::reuse_address(hub_->options.mayReusePort));
    hub_->acceptor.bind(bound);
    hub_->acceptor.listen();
  } catch (const boost::system::system_error& error) {
    throw std::runtime_error(nameOf(bound.address(), bound.port()) + ": " + reasonOf(error.code()));
  }
  hub_->accept();
}

Server::~Server() {
  try {
    Error ignored;
    hub_->acceptor.close(ignored);
    hub_->calm.cancel();
    const Hub::Sessions sessions = hub_->sessions;
    for (const auto& session : sessions) session->close();
  } catch (...) {
    // The program ends: what cannot be closed goes with it.
  }
}

std::string Server::url() const {
  const tcp::endpoint bound = hub_->acceptor.local_endpoint();
  return "http://" + nameOf(bound.address(), bound.port()) + "/";
}

void Server::changed() { hub_->announce(); }

void Server::askAgain() {
  const Hub::Sessions sessions = hub_->sessions;
  for (const auto& session : sessions) session->askAgain();
}

}  // namespace mirvane::http
