#pragma once

#include <memory>
#include <string>
#include <vector>

#include "emulator/program/station.h"

namespace boost::asio {
class io_context;
}

namespace mirvane::emulator {

/// What the program shows of the register beside its paper. The small program that prints a demonstration's receipt is
/// built without it.
class Web {
 public:
  struct Options {
    /// "[[HOST:]PORT]"; empty for none.
    std::string address;
    /// Further names under which it may be asked for.
    std::vector<std::string> hosts;
    /// A file that takes down what happens; empty for none.
    std::string log;
  };

  virtual ~Web() = default;
  /// Of the page; empty when there is none.
  virtual std::string url() const = 0;
};

/// Throws UsageError in a program without it, std::invalid_argument for a text that is no address, and TransportError
/// when the address or the file cannot be opened.
std::unique_ptr<Web> openWeb(boost::asio::io_context& loop, Station& station, const Web::Options& options);

}  // namespace mirvane::emulator
