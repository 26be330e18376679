#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace mirvane::check {

/// A program that this one starts and reads. It is ended when this object is destroyed or this program ends.
class Child {
 public:
  /// Starts `program` in `folder`, or in this program's folder if that is empty. Raises runtime_error if that fails.
  Child(const std::filesystem::path& program, const std::vector<std::string>& arguments,
        const std::filesystem::path& folder = {});
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child();

  /// Everything that it has written to standard output, once it has ended; nothing if it does not end within this many
  /// seconds.
  std::optional<std::string> outputWithin(double seconds);
  /// What it has written once there is a complete line; nothing if there is none within this many seconds.
  std::optional<std::string> lineWithin(double seconds);

 private:
  struct System;

  /// Reads what is there; false if nothing more will come.
  bool take();

  std::unique_ptr<System> system_;
  std::string output_;
};

}  // namespace mirvane::check
