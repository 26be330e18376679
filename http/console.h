#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "http/machine.h"

namespace mirvane {

/// Standard output that never holds up the program: what nobody reads is kept up to a limit, and then left out.
class Console {
 public:
  /// `output` takes it instead, in a thread of its own.
  explicit Console(std::function<void(std::string_view)> output = writeOut);
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;
  /// Waits a moment for what is still to be read.
  ~Console();

  void write(std::string text);

 private:
  struct Queue;
  const std::shared_ptr<Queue> queue_;
};

}  // namespace mirvane
