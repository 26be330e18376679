#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "http/json.h"

namespace mirvane::http {

struct Request {
  std::string method;
  /// Without the query, and decoded.
  std::string path;
  std::map<std::string, std::string> query;
  /// By their names in small letters.
  std::map<std::string, std::string> headers;
  std::string body;
  /// The client wants to ask more over the same connection.
  bool isKeptAlive = false;

  /// A header's value, empty when there is none.
  std::string header(const std::string& name) const;
};

struct Answer {
  int status = 200;
  std::string type = "application/json";
  std::string body;
  std::vector<std::pair<std::string, std::string>> headers = {};
  /// When above 0, another answer may be worth waiting for so long: after any change the request is put again, and
  /// this one sent when the time is over.
  double waitSeconds = 0;
  /// The connection becomes a stream of server-sent events: one for every change.
  bool isStream = false;
};

Answer json(const Json& value, int status = 200);
/// Done, and nothing to tell.
Answer nothing();
/// What tells that a request cannot be followed: a JSON object with `error`, and `where` unless that is empty.
Answer problem(int status, const std::string& text, const std::string& where = "");

/// Thrown by a handler whose request cannot be followed.
struct Refusal : std::runtime_error {
  /// `where` it lies: "body" and the JSON pointer to the place, as in "body/rule", "query/NAME", "path", "header/NAME",
  /// or nowhere.
  Refusal(int answerStatus, const std::string& text, std::string place = "", Json details = Json::Object{})
      : std::runtime_error(text), status(answerStatus), where(std::move(place)), more(std::move(details)) {}

  Answer answer() const;

  int status;
  std::string where;
  /// Further members of the answer.
  Json more;
};

/// `answer` as it goes out. One to HEAD has no body.
std::string serialized(const Answer& answer, bool isHead, bool isKeptAlive);

/// "%CE%B1" as the bytes that it stands for; a "%" without two hexadecimal digits stands for itself.
std::string decoded(std::string_view text);

/// Throws the Refusal of a request that is not to be followed. A page from elsewhere, in the same browser, must not
/// reach a server of this machine: neither under a name of its own that leads here, nor from its own origin. An
/// address, "localhost" and names that end in ".localhost" are what they say; other names must be among `hosts`, in any
/// case, and pages of `origins`, such as "https://till.shop", are let in too.
void refuseTrespass(const Request& request, const std::vector<std::string>& hosts,
                    const std::vector<std::string>& origins = {});

/// Whether a browser asks beforehand what a page of one of the `origins` may do; `refuseTrespass` has let it in.
bool isPreflight(const Request& request);
/// Lets the page that asked, which `refuseTrespass` has let in, read `answer`. Nothing for one of the server's own.
void allowOrigin(const Request& request, Answer& answer);

}  // namespace mirvane::http
