#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace mirvane::service {

/// Who may ask: names, each with the hash of a token, which is not stored itself. Kept in a text file that a command
/// changes while the service runs. Throws std::runtime_error if the file cannot be written.
class Tokens {
 public:
  explicit Tokens(std::filesystem::path file) : file_(std::move(file)) { read(); }

  /// Creates a token under a new name; empty if the name is taken.
  std::string add(const std::string& name);
  bool remove(const std::string& name);
  const std::map<std::string, std::string>& hashes() const { return hashes_; }

  /// The owner of a token; empty if it is invalid. The file is read again after a change.
  std::string ownerOf(const std::string& token);

 private:
  void read();
  void write() const;

  const std::filesystem::path file_;
  std::filesystem::file_time_type changed_{};
  std::map<std::string, std::string> hashes_;
};

/// As hexadecimal digits.
std::string sha256(const std::string& bytes);

}  // namespace mirvane::service
