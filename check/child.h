#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace mirvane::check {

/// A program that this one starts and reads. It ends with this object, and when this program ends, whatever it is at.
class Child {
 public:
  /// Raises runtime_error when it cannot be started. It works in `folder`, or in this program's where that is empty.
  Child(const std::filesystem::path& program, const std::vector<std::string>& arguments,
        const std::filesystem::path& folder = {});
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child();

  /// What it has written to its standard output when it ended; nothing when it has not within so many seconds.
  std::optional<std::string> outputWithin(double seconds);
  /// What it has written when there is a whole line; nothing when there is none within so many seconds.
  std::optional<std::string> lineWithin(double seconds);

 private:
  struct System;

  /// Takes what is there; false when nothing more will come.
  bool take();

  std::unique_ptr<System> system_;
  std::string output_;
};

}  // namespace mirvane::check
