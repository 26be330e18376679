#pragma once

#include <fstream>
#include <string>

#include "emulator/program/station.h"
#include "http/message.h"

namespace mirvane::emulator {

/// A log for examining a failed test run: a line of JSON for the start, each exchange, each document, each change of
/// drawer and display, and each request with its answer's status.
class Log {
 public:
  /// Appends to the file `path`. Throws TransportError if it cannot be opened.
  explicit Log(const std::string& path);

  void add(Station& station, const Station::Happening& happening);
  void add(const http::Request& request, int status);

 private:
  void write(const char* kind, const http::Json& what);

  std::ofstream file_;
};

}  // namespace mirvane::emulator
