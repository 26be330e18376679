#pragma once

#include <map>
#include <string>

#include "emulator/program/station.h"

namespace mirvane::emulator {

struct Request {
  std::string method;
  /// Without the query.
  std::string path;
  std::map<std::string, std::string> query;
  std::string body;
};

struct Answer {
  int status = 200;
  std::string type = "application/json";
  std::string body;
  /// When above 0, another answer may be worth waiting for so long: after any change the request is to be put again,
  /// and this one sent when the time is over.
  double waitSeconds = 0;
};

/// Does what `request` wishes, to the paths of emulator/http.md and to those of the page.
Answer answer(Station& station, const Request& request);

/// What tells that a request cannot be followed.
Answer problem(int status, const std::string& text, const std::string& where = "");

}  // namespace mirvane::emulator
