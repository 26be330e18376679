#pragma once

#include <memory>
#include <string>

namespace mirvane {

/// Standard output that never holds up the program: what nobody reads is kept up to a limit, and then left out.
class Console {
 public:
  Console();
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
