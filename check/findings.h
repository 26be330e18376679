#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mirvane::check {

/// The kind of a finding, the worst first.
enum class Mark { kFault, kWarning, kNote, kOk };

/// One finding in words and, for a fault or a warning, the one thing to do. After its first line a remedy may have
/// commands, one per line.
struct Finding {
  Mark mark;
  std::string what;
  std::string remedy;
};

/// The findings under one heading.
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

/// The worst mark; kOk if there are no findings.
Mark worstOf(const Findings& findings);

/// For people: each finding with its mark, and the remedy below it.
std::string inWords(const Findings& findings);

/// For programs: "fault", "warning", "note", "ok".
std::string_view wordFor(Mark mark);

/// For the copy of this program that started this one: one line per finding.
std::string asLines(const Findings& findings);
Findings fromLines(const std::string& lines);

}  // namespace mirvane::check
