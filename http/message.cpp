#include "http/message.h"

#include <algorithm>
#include <charconv>

#include "http/endpoint.h"
#include "text/code_page.h"

namespace mirvane::http {
namespace {

std::string_view reasonOf(int status) {
  constexpr std::pair<int, std::string_view> kReasons[] = {{200, "OK"},
                                                           {201, "Created"},
                                                           {202, "Accepted"},
                                                           {204, "No Content"},
                                                           {304, "Not Modified"},
                                                           {400, "Bad Request"},
                                                           {401, "Unauthorized"},
                                                           {403, "Forbidden"},
                                                           {404, "Not Found"},
                                                           {405, "Method Not Allowed"},
                                                           {409, "Conflict"},
                                                           {413, "Content Too Large"},
                                                           {429, "Too Many Requests"},
                                                           {422, "Unprocessable Content"},
                                                           {431, "Request Header Fields Too Large"},
                                                           {500, "Internal Server Error"},
                                                           {503, "Service Unavailable"}};
  const auto* found =
      std::find_if(std::begin(kReasons), std::end(kReasons), [=](auto& row) { return row.first == status; });
  return found == std::end(kReasons) ? "" : found->second;
}

std::string small(std::string_view text) {
  std::string letters(text);
  for (char& c : letters) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
  return letters;
}

/// The host of a Host field or of an origin, without its port.
std::string hostOf(std::string_view field) {
  const std::size_t end = field.starts_with('[') ? field.find(']') + 1 : field.find(':');
  return small(field.substr(0, end));
}

bool isAllowed(const std::string& host, const std::vector<std::string>& hosts) {
  if (host == "localhost" || host.ends_with(".localhost") || isAddress(host)) return true;
  return std::any_of(hosts.begin(), hosts.end(), [&](const std::string& name) { return small(name) == host; });
}

}  // namespace

std::string Request::header(const std::string& name) const {
  const auto found = headers.find(name);
  return found == headers.end() ? "" : found->second;
}

Answer json(const Json& value, int status) { return {status, "application/json", value.dump() + "\n"}; }

Answer nothing() { return {204, "", ""}; }

Answer problem(int status, const std::string& text, const std::string& where) {
  return Refusal(status, text, where).answer();
}

Answer Refusal::answer() const {
  Json view{{"error", what()}};
  if (!where.empty()) view.set("where", where);
  return json(view.update(more), status);
}

std::string serialized(const Answer& answer, bool isHead, bool isKeptAlive) {
  std::string text = "HTTP/1.1 " + std::to_string(answer.status);
  text.append(" ").append(reasonOf(answer.status)).append("\r\n");
  const bool isText = answer.type.starts_with("text/");
  const auto add = [&text](std::string_view name, std::string_view value) {
    text.append(name).append(": ").append(value).append("\r\n");
  };
  if (!answer.type.empty()) add("Content-Type", answer.type + (isText ? "; charset=utf-8" : ""));
  if (answer.status != 204 && !answer.isStream) add("Content-Length", std::to_string(answer.body.size()));
  add("Cache-Control", "no-store");
  add("X-Content-Type-Options", "nosniff");
  add("Content-Security-Policy", "default-src 'self'; frame-ancestors 'none'");
  for (const auto& [name, value] : answer.headers) add(name, value);
  if (!isKeptAlive) add("Connection", "close");
  text += "\r\n";
  if (!isHead) text += answer.body;
  return text;
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

void refuseTrespass(const Request& request, const std::vector<std::string>& hosts,
                    const std::vector<std::string>& origins) {
  const std::string field = request.header("host");
  if (field.empty() || toUtf8(fromUtf8(field)) != field) throw Refusal(400, "a host name is expected", "header/host");
  if (!isAllowed(hostOf(field), hosts)) throw Refusal(403, "not served as host \"" + field + "\"", "header/host");
  const std::string origin = small(request.header("origin"));
  const bool isOurs = !request.headers.contains("origin") || origin == "http://" + small(field);
  const bool isListed = std::any_of(origins.begin(), origins.end(), [&](auto& name) { return small(name) == origin; });
  if (!isOurs && !isListed) throw Refusal(403, "not for web pages of other origins", "header/origin");
}

bool isPreflight(const Request& request) {
  return request.method == "OPTIONS" && request.headers.contains("origin") &&
         request.headers.contains("access-control-request-method");
}

void allowOrigin(const Request& request, Answer& answer) {
  if (!request.headers.contains("origin")) return;
  answer.headers.emplace_back("Access-Control-Allow-Origin", request.header("origin"));
  answer.headers.emplace_back("Vary", "Origin");
  if (!isPreflight(request)) return;
  answer.headers.emplace_back("Access-Control-Allow-Methods", "GET, PUT, POST, DELETE");
  answer.headers.emplace_back("Access-Control-Allow-Headers", "Authorization, Content-Type, Prefer");
  answer.headers.emplace_back("Access-Control-Max-Age", "600");
}

}  // namespace mirvane::http
