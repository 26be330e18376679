#pragma once

#include <string>
#include <vector>

#include "campaign/machine.h"

namespace mirvane::campaign {

/// A row of the table: one kind of fault, and how it comes.
struct Row {
  enum class Group { kOnce, kLasting, kPairs } group;
  std::string fault;
};

struct Run {
  /// In Plan::rows.
  std::size_t row;
  LineKind line;
  std::vector<std::string> rules;

  /// Whether it is one of the few that every test runs; that depends on the run alone, not on the others.
  bool isInShare() const;
};

struct Plan {
  std::vector<Row> rows;
  std::vector<Run> runs;
};

/// Each fault that the emulator knows, with the arguments that are tried, as in a rule.
std::vector<std::string> singleFaults();

/// Every fault that the emulator knows, at every command of a day, over every line.
Plan makePlan();

}  // namespace mirvane::campaign
