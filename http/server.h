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

/// Serves HTTP in the loop of one thread: request after request on each connection, answers that are waited for, and
/// streams of events. A connection that its client has left is let go at once, and none waits for another.
///
/// A request under a foreign name, or made by a page from elsewhere, is refused; whatever the handler throws becomes an
/// answer: a Refusal its own, anything else 500.
class Server {
 public:
  /// May write down in the request what it has to know when that is put again.
  using Handler = std::function<Answer(Request& request)>;

  struct Options {
    /// Further names than addresses and "localhost" under which requests are served.
    std::vector<std::string> hosts = {};
    /// Whether the port may be opened in spite of connections that linger there from an earlier run.
    bool mayReusePort = true;
    /// Connections at a time. One more takes the place of one that asks nothing, or is answered with 503.
    std::size_t mostSessions = 250;
    /// Pages from elsewhere that may ask, as "https://till.shop".
    std::vector<std::string> origins = {};
    /// Changes within this time are told as one.
    std::chrono::milliseconds calm{20};
    /// What a request that is not followed is answered with.
    std::function<Answer(const Refusal&)> refuse = &Refusal::answer;
  };

  /// Throws std::runtime_error when the endpoint cannot be opened.
  Server(boost::asio::io_context& loop, const Endpoint& endpoint, Options options, Handler handler);
  ~Server();

  /// "http://127.0.0.1:8100/", with the port that the system chose.
  std::string url() const;
  /// Tells whoever listens to a stream or waits for something. What comes in quick succession is told once, and a
  /// listener that is slow is told the less often.
  void changed();
  /// Puts the requests that wait once more; streams are told nothing.
  void askAgain();

 private:
  struct Hub;
  std::shared_ptr<Hub> hub_;
};

}  // namespace mirvane::http
