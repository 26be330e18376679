#include "emulator/program/web.h"

#include <optional>

#include "emulator/program/system.h"
#include "emulator/program/transport.h"
#include "emulator/program/web/api.h"
#include "http/server.h"

namespace mirvane::emulator {
namespace {

class Served : public Web {
 public:
  Served(boost::asio::io_context& loop, Station& station, const Options& options) {
    if (options.address.empty()) return;
    const http::Endpoint endpoint("--web", options.address);
    try {
      server_ = std::make_unique<http::Server>(loop, endpoint, http::Server::Options{options.hosts, mayReusePorts()},
                                               [&station](http::Request& request) { return answer(station, request); });
    } catch (const std::runtime_error& error) {
      throw TransportError(std::string("web ") + error.what());
    }
    station.onChange = [this] { server_->changed(); };
  }

  std::string url() const override { return server_ ? server_->url() : ""; }

 private:
  std::unique_ptr<http::Server> server_;
};

}  // namespace

std::unique_ptr<Web> openWeb(boost::asio::io_context& loop, Station& station, const Web::Options& options) {
  return std::make_unique<Served>(loop, station, options);
}

}  // namespace mirvane::emulator
