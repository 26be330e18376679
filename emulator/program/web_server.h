#pragma once

#include <functional>
#include <memory>
#include <string>

#include "emulator/program/api.h"

namespace boost::asio {
class io_context;
}

namespace mirvane::emulator {

/// The page and the interface for tests, over HTTP. It serves this machine's own programs and its own page: a request
/// under a foreign name, or made by a page from elsewhere, is refused.
class WebServer {
 public:
  using Handler = std::function<Answer(const Request& request)>;

  /// `address` is "PORT" (on 127.0.0.1) or "ADDRESS:PORT". Throws TransportError when it cannot be opened and
  /// std::invalid_argument for a text that is no such address.
  WebServer(boost::asio::io_context& loop, const std::string& address, Handler handler);
  ~WebServer();

  /// Of the page.
  std::string url() const;
  /// Tells whoever listens to /api/v1/events or waits for something. What comes in quick succession is told once, and a
  /// listener that is slow is told the less often; none is waited for.
  void changed();

 private:
  struct Hub;
  std::shared_ptr<Hub> hub_;
};

}  // namespace mirvane::emulator
