#pragma once

#include <string>
#include <vector>

#include "campaign/day.h"

namespace mirvane::campaign {

/// A row of the tables: what is done to the line, and how it comes.
struct Row {
  enum class Group { kOnce, kLasting, kPairs, kRates, kStrangers, kWithin, kAnswers, kService } group;
  std::string name;
};

struct Run {
  /// In Plan::rows.
  std::size_t row;
  LineKind line;
  /// What the till does, who sits on the line, what the program does, and rules: see main.cpp.
  std::vector<std::string> words;

  /// As the command line takes it.
  std::string text() const;
  /// Whether it is one of the few that every test runs; that depends on the run alone, not on the others.
  bool isInShare() const;
  /// With two rules, what they do together and neither does alone.
  Tally run(const Log& log = {}) const;
};

struct Plan {
  std::vector<Row> rows;
  std::vector<Run> runs;
};

/// Every fault that the emulator knows, at every command of a day, over every line; and what else is tried.
Plan makePlan();

}  // namespace mirvane::campaign
