#include "emulator/program/web/log.h"

#include "emulator/program/transport.h"
#include "emulator/program/web/views.h"
#include "http/machine.h"
#include "version.h"

namespace mirvane::emulator {
namespace {

/// Of a request's body.
constexpr std::size_t kMostShown = 4096;

}  // namespace

Log::Log(const std::string& path) : file_(pathOf(path), std::ios::binary | std::ios::app) {
  if (!file_) throw TransportError("--log " + path + ": cannot be written");
  write("started", Json{{"version", MIRVANE_VERSION}});
}

void Log::add(Station& station, const Station::Happening& happening) {
  // The exchange itself has reported it.
  if (happening.kind != Station::Happening::Kind::kStruck) write("happening", happeningView(station, happening));
}

void Log::add(const http::Request& request, int status) {
  Json query = Json::Object{};
  for (const auto& [name, value] : request.query) query.set(name, value);
  write("request", Json{{"method", request.method},
                        {"path", request.path},
                        {"query", query},
                        {"body", request.body.substr(0, kMostShown)},
                        {"status", status}});
}

void Log::write(const char* kind, const Json& what) {
  const std::int64_t now = millisecondsNow();
  file_ << Json{{"at", isoTime(systemTime())}, {"milliseconds", now % 1000}, {kind, what}}.dump(false) << "\n"
        << std::flush;
}

}  // namespace mirvane::emulator
