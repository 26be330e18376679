#pragma once

#include <memory>
#include <string>
#include <vector>

#include "emulator/program/station.h"

namespace boost::asio {
class io_context;
}

namespace mirvane::emulator {

/// What the program shows of the register besides its paper. The program for the demonstration is built without it.
class Web {
 public:
  struct Options {
    /// "[[HOST:]PORT]"; empty for none.
    std::string address;
    /// Additional host names under which it is served.
    std::vector<std::string> hosts;
    /// A file that records events; empty for none.
    std::string log;
  };

  virtual ~Web() = default;
  /// URL of the page; empty if there is none.
  virtual std::string url() const = 0;
};

/// Throws UsageError in a program built without it, std::invalid_argument if a text is not an address, and
/// TransportError if the address or the file cannot be opened.
std::unique_ptr<Web> openWeb(boost::asio::io_context& loop, Station& station, const Web::Options& options);

}  // namespace mirvane::emulator
