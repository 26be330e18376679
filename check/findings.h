#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mirvane::check {

/// What a finding is, the worst first.
enum class Mark { kFault, kWarning, kNote, kOk };

/// One thing that was looked at: what was found, in words, and for a fault or a warning the one thing to do. Behind its
/// first line a remedy has commands, a line each.
struct Finding {
  Mark mark;
  std::string what;
  std::string remedy;
};

/// What was found under one heading.
class Findings {
 public:
  void fault(std::string what, std::string remedy) { add({Mark::kFault, std::move(what), std::move(remedy)}); }
  void warning(std::string what, std::string remedy) { add({Mark::kWarning, std::move(what), std::move(remedy)}); }
  void note(std::string what) { add({Mark::kNote, std::move(what), {}}); }
  void ok(std::string what) { add({Mark::kOk, std::move(what), {}}); }
  void add(Finding finding) { list_.push_back(std::move(finding)); }
  void add(const Findings& others) { list_.insert(list_.end(), others.list_.begin(), others.list_.end()); }

  const std::vector<Finding>& list() const { return list_; }
  std::size_t count(Mark mark) const;
  void sortWorstFirst();

 private:
  std::vector<Finding> list_;
};

/// The worst there is; kOk where there is nothing.
Mark worstOf(const Findings& findings);

/// For people: a line with its mark, and the remedy below it.
std::string inWords(const Findings& findings);

/// For programs: "fault", "warning", "note", "ok".
std::string_view wordFor(Mark mark);

/// For another copy of this program that started this one: a line a finding.
std::string asLines(const Findings& findings);
Findings fromLines(const std::string& lines);

}  // namespace mirvane::check
