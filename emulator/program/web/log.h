#pragma once

#include <fstream>
#include <string>

#include "emulator/program/station.h"
#include "http/message.h"

namespace mirvane::emulator {

/// A file with all that a failed test run leaves to be read: a line of JSON for the start, each exchange, each
/// document, each change of drawer and display, each request and its answer's status.
class Log {
 public:
  /// Appends to the file `path`. Throws TransportError when it cannot be opened.
  explicit Log(const std::string& path);

  void add(Station& station, const Station::Happening& happening);
  void add(const http::Request& request, int status);

 private:
  void write(const char* kind, const http::Json& what);

  std::ofstream file_;
};

}  // namespace mirvane::emulator
