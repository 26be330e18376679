#include "emulator/program/web/api.h"

#include <algorithm>
#include <charconv>

#include "emulator/program/web/assets.h"
#include "emulator/program/web/call.h"

namespace mirvane::emulator {
namespace {

struct Route {
  std::string_view method;
  /// Below /api/v1. The last piece may be "*".
  std::string_view path;
  /// The names that its query may have.
  std::string_view query;
  Answer (*handle)(Call& call);
};

constexpr std::string_view kRoot = "/api/v1";

constexpr Route kRoutes[] = {
    {"GET", "/health", "", getHealth},
    {"GET", "/version", "", getVersion},
    {"GET", "/state", "", getState},
    {"GET", "/register", "", getRegister},
    {"PATCH", "/register", "", patchRegister},
    {"GET", "/clock", "", getClock},
    {"PATCH", "/clock", "", patchClock},
    {"POST", "/reset", "", postReset},
    {"POST", "/commands", "", postCommand},
    {"POST", "/paper", "", postPaper},
    {"GET", "/receipts", "before after limit text", getReceipts},
    {"GET", "/receipts/*", "z wait", getReceipt},
    {"GET", "/documents", "before after limit text", getDocuments},
    {"GET", "/documents/*", "", getDocument},
    {"GET", "/happenings", "after kind limit wait", getHappenings},
    {"POST", "/verify", "wait", postVerify},
    {"GET", "/faults", "", getFaults},
    {"POST", "/faults", "", postFault},
    {"DELETE", "/faults", "", deleteFaults},
    {"GET", "/faults/*", "", getFault},
    {"DELETE", "/faults/*", "", deleteFault},
    {"GET", "/switches", "", getSwitches},
    {"PATCH", "/switches", "", patchSwitches},
    {"GET", "/card", "", getCard},
    {"PATCH", "/card", "", patchCard},
    {"POST", "/card/decision", "", postDecision},
    {"GET", "/conversation", "after limit", getConversation},
    {"DELETE", "/conversation", "", deleteConversation},
    {"GET", "/changes", "document lines entry limit", getChanges},
    {"GET", "/events", "", [](Call&) { return Answer{200, "text/event-stream", "", {}, 0, true}; }},
};

/// Whether `path` is the route's; `item` becomes what stands in the place of its "*".
bool matches(std::string_view route, std::string_view path, std::string& item) {
  if (!route.ends_with('*')) return route == path;
  route.remove_suffix(1);
  if (!path.starts_with(route)) return false;
  item = path.substr(route.size());
  return !item.empty() && item.find('/') == std::string::npos;
}

bool holdsWord(std::string_view words, std::string_view word) {
  return (" " + std::string(words) + " ").find(" " + std::string(word) + " ") != std::string::npos;
}

Answer answerAsset(const Asset& asset, const http::Request& request) {
  if (request.method != "GET") throw Refusal(405, "the path does not support " + request.method);
  return {200, std::string(asset.type), std::string(asset.bytes)};
}

int parseNumber(const std::string& text, const std::string& where, int least, int most) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc() && end == text.data() + text.size() && number >= least && number <= most) return number;
  throw Refusal(400, "a number from " + std::to_string(least) + " to " + std::to_string(most) + " is expected", where);
}

}  // namespace

int Call::query(const char* name, int otherwise, int least, int most) const {
  const auto found = request.query.find(name);
  return found == request.query.end() ? otherwise
                                      : parseNumber(found->second, "query/" + std::string(name), least, most);
}

double Call::wait() const {
  const auto found = request.query.find("wait");
  if (found == request.query.end()) return 0;
  const std::string& text = found->second;
  double seconds = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds, std::chars_format::fixed);
  if (error == std::errc() && end == text.data() + text.size() && seconds >= 0 && seconds <= 600) return seconds;
  throw Refusal(400, "seconds from 0 to 600 are expected", "query/wait");
}

int Call::number() const { return parseNumber(item, "path", 1, kGreatestNumber); }

Answer answer(Station& station, http::Request& request) {
  if (const Asset* asset = findAsset(request.path)) return answerAsset(*asset, request);
  std::string allowed;
  Call call{station, request, {}};
  const bool isBelowRoot = request.path.starts_with(kRoot);
  const std::string_view path = std::string_view(request.path).substr(isBelowRoot ? kRoot.size() : 0);
  for (const Route& route : kRoutes) {
    if (!isBelowRoot || !matches(route.path, path, call.item)) continue;
    if (request.method != route.method) {
      allowed.append(allowed.empty() ? "" : ", ").append(route.method);
      continue;
    }
    for (const auto& [name, value] : request.query) {
      if (!holdsWord(route.query, name)) throw Refusal(400, "unknown", "query/" + name);
    }
    return route.handle(call);
  }
  if (allowed.empty()) throw Refusal(404, "no such path", "path");
  Answer refused = http::problem(405, "the path does not support " + request.method);
  refused.headers.emplace_back("Allow", allowed);
  return refused;
}

}  // namespace mirvane::emulator
