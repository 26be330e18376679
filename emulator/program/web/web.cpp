#include "emulator/program/web.h"

#include <optional>

#include "emulator/program/transport.h"
#include "emulator/program/web/api.h"
#include "emulator/program/web/log.h"
#include "http/machine.h"
#include "http/server.h"

namespace mirvane::emulator {
namespace {

class Served : public Web {
 public:
  Served(boost::asio::io_context& loop, Station& station, const Options& options) {
    if (!options.log.empty()) {
      log_.emplace(options.log);
      station.onHappening = [this, &station](const Station::Happening& happening) { log_->add(station, happening); };
    }
    if (options.address.empty()) return;
    const http::Endpoint endpoint("--web", options.address);
    try {
      server_ =
          std::make_unique<http::Server>(loop, endpoint, http::Server::Options{options.hosts, mayReusePorts()},
                                         [this, &station](http::Request& request) { return logged(station, request); });
    } catch (const std::runtime_error& error) {
      throw TransportError(std::string("web ") + error.what());
    }
    station.onChange = [this] { server_->changed(); };
  }

  std::string url() const override { return server_ ? server_->url() : ""; }

 private:
  http::Answer logged(Station& station, http::Request& request) {
    http::Answer answered;
    try {
      answered = answer(station, request);
    } catch (const http::Refusal& refusal) {
      answered = refusal.answer();
    }
    // A request that is handled again is reported once.
    if (log_ && answered.waitSeconds <= 0) log_->add(request, answered.status);
    return answered;
  }

  std::optional<Log> log_;
  std::unique_ptr<http::Server> server_;
};

}  // namespace

std::unique_ptr<Web> openWeb(boost::asio::io_context& loop, Station& station, const Web::Options& options) {
  return std::make_unique<Served>(loop, station, options);
}

}  // namespace mirvane::emulator
