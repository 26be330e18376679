#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "http/json.h"

namespace mirvane::http {

struct Request {
  std::string method;
  /// Without the query; decoded.
  std::string path;
  std::map<std::string, std::string> query;
  /// By name in lower case.
  std::map<std::string, std::string> headers;
  std::string body;
  /// The client wants to send more requests over the same connection.
  bool isKeptAlive = false;

  /// A header's value; empty if there is none.
  std::string header(const std::string& name) const;
};

struct Answer {
  int status = 200;
  std::string type = "application/json";
  std::string body;
  std::vector<std::pair<std::string, std::string>> headers = {};
  /// Above 0: the client waits this many seconds for another answer. After each change the request is handled again;
  /// this answer is sent when the time is over.
  double waitSeconds = 0;
  /// The connection becomes a stream of server-sent events, one for each change.
  bool isStream = false;
};

Answer json(const Json& value, int status = 200);
/// An answer without content.
Answer nothing();
/// The answer to an invalid request: a JSON object with `error`, and with `where` unless that is empty.
Answer problem(int status, const std::string& text, const std::string& where = "");

/// Thrown by a handler for an invalid request.
struct Refusal : std::runtime_error {
  /// `where`: "body" and the JSON pointer to the place, as in "body/rule", "query/NAME", "path", "header/NAME", or
  /// empty.
  Refusal(int answerStatus, const std::string& text, std::string place = "", Json details = Json::Object{})
      : std::runtime_error(text), status(answerStatus), where(std::move(place)), more(std::move(details)) {}

  Answer answer() const;

  int status;
  std::string where;
  /// Additional members of the answer.
  Json more;
};

/// `answer` as bytes. An answer to HEAD has no body.
std::string serialized(const Answer& answer, bool isHead, bool isKeptAlive);

/// Decodes percent encoding such as "%CE%B1"; a "%" without two hexadecimal digits stays.
std::string decoded(std::string_view text);

/// Throws the Refusal for a request that must not be served. A web page from elsewhere in the same browser must not
/// reach a server on this machine: neither under a host name of its own that leads here, nor from its own origin. An
/// address, "localhost" and names that end in ".localhost" are always accepted; other names must be in `hosts`,
/// whatever their case. Pages of `origins`, such as "https://till.shop", are accepted too.
void refuseTrespass(const Request& request, const std::vector<std::string>& hosts,
                    const std::vector<std::string>& origins = {});

/// Whether a browser asks in advance what a page of one of the `origins` may do; call it after `refuseTrespass`.
bool isPreflight(const Request& request);
/// Allows the page that asked to read `answer`; call it after `refuseTrespass`. Does nothing for the server's own
/// pages.
void allowOrigin(const Request& request, Answer& answer);

}  // namespace mirvane::http
