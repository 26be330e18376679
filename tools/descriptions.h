#pragma once

#include <fstream>
#include <map>
#include <set>
#include <stdexcept>
#include <string>

// The sentences about the public classes, which the reference pages and the type library's help strings have in common.
namespace mirvane {

/// The sentences by what they tell about: "class", "class.member", "class.*" for the members without one of their own,
/// "FISCAL_TYPES.constant", or a parameter: "class.member(parameter)", "(parameter)". They are Markdown.
class Descriptions {
 public:
  /// Reads a file with a line "subject: text" for each; throws for one that is not so.
  explicit Descriptions(const char* file) {
    std::ifstream input(file);
    if (!input) throw std::runtime_error("cannot be read");
    for (std::string line; std::getline(input, line);) {
      if (line.empty() || line.starts_with('#')) continue;
      const std::size_t colon = line.find(": ");
      if (colon == std::string::npos) throw std::runtime_error("neither a description nor a comment: " + line);
      const std::string subject = line.substr(0, colon);
      if (!texts_.emplace(subject, line.substr(colon + 2)).second) {
        throw std::runtime_error(subject + " is described twice");
      }
    }
  }

  bool has(const std::string& subject) const { return find(subject) != texts_.end(); }

  /// Throws when there is none.
  const std::string& of(const std::string& subject) {
    const auto found = find(subject);
    if (found == texts_.end()) throw std::runtime_error(subject + " has no description");
    used_.insert(found->first);
    return found->second;
  }

  /// Throws when a sentence is about nothing that was asked for.
  void requireAllUsed() const {
    for (const auto& [subject, text] : texts_) {
      if (!used_.contains(subject)) throw std::runtime_error("there is no " + subject + " to describe");
    }
  }

 private:
  std::map<std::string, std::string>::const_iterator find(const std::string& subject) const {
    const auto own = texts_.find(subject);
    if (subject.ends_with(')')) return own;
    return own != texts_.end() ? own : texts_.find(subject.substr(0, subject.find('.')) + ".*");
  }

  std::map<std::string, std::string> texts_;
  std::set<std::string> used_;
};

inline std::string subjectOf(std::string_view owner, std::string_view part) {
  return std::string(owner).append(".").append(part);
}

}  // namespace mirvane
