#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace mirvane::service {

/// Who may ask: names, each with the hash of a token that nobody keeps. A file of lines, which a command changes while
/// the service runs. Throws std::runtime_error when it cannot be written.
class Tokens {
 public:
  explicit Tokens(std::filesystem::path file) : file_(std::move(file)) { read(); }

  /// A new token under a new name; empty when the name is taken.
  std::string add(const std::string& name);
  bool remove(const std::string& name);
  const std::map<std::string, std::string>& hashes() const { return hashes_; }

  /// Whose token it is; empty for nobody's. The file is read anew when it has changed.
  std::string ownerOf(const std::string& token);

 private:
  void read();
  void write() const;

  const std::filesystem::path file_;
  std::filesystem::file_time_type changed_{};
  std::map<std::string, std::string> hashes_;
};

/// In hexadecimal digits.
std::string sha256(const std::string& bytes);

}  // namespace mirvane::service
