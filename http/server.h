#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "http/endpoint.h"
#include "http/message.h"

namespace boost::asio {
class io_context;
}

namespace mirvane::http {

/// Serves HTTP in the loop of one thread: successive requests on each connection, answers that are waited for, and
/// streams of events. A connection that its client has left is closed at once, and no connection waits for another.
///
/// A request under a foreign name, or from a web page elsewhere, is refused. Whatever the handler throws becomes an
/// answer: a Refusal its own, anything else 500.
class Server {
 public:
  /// May store in the request what it needs when that is handled again.
  using Handler = std::function<Answer(Request& request)>;

  struct Options {
    /// Names besides addresses and "localhost" under which requests are served.
    std::vector<std::string> hosts = {};
    /// Whether the port may be opened while connections of an earlier run linger there.
    bool mayReusePort = true;
    /// Maximum number of connections. One more replaces an idle one, or is answered with 503.
    std::size_t mostSessions = 250;
    /// Origins of other web pages that may ask, such as "https://till.shop".
    std::vector<std::string> origins = {};
    /// Changes within this time are reported as one.
    std::chrono::milliseconds calm{20};
    /// Makes the answer to a refused request.
    std::function<Answer(const Refusal&)> refuse = &Refusal::answer;
  };

  /// Throws std::runtime_error if the endpoint cannot be opened.
  Server(boost::asio::io_context& loop, const Endpoint& endpoint, Options options, Handler handler);
  ~Server();

  /// "http://127.0.0.1:8100/", with the port that the system chose.
  std::string url() const;
  /// Notifies streams and waiting requests. Changes in quick succession are reported once; a slow listener gets fewer
  /// notifications.
  void changed();
  /// Handles waiting requests again; streams get nothing.
  void askAgain();

 private:
  struct Hub;
  std::shared_ptr<Hub> hub_;
};

}  // namespace mirvane::http
