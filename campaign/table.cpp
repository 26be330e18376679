#include "campaign/table.h"

#include <sstream>

namespace mirvane::campaign {
namespace {

constexpr std::string_view kHeadings[] = {"One command is hit", "Every command from one on is hit",
                                          "Two commands in a row are hit, the second one by any other fault"};
constexpr std::string_view kGroupNames[] = {"once", "lasting", "pairs"};
constexpr std::string_view kLineNames[] = {"serial", "frame", "enq"};

std::string keyOf(const Plan& plan, std::pair<std::size_t, LineKind> at) {
  const Row& row = plan.rows[at.first];
  return std::string(kGroupNames[static_cast<std::size_t>(row.group)]) + " " + row.fault + " " +
         std::string(kLineNames[static_cast<std::size_t>(at.second)]);
}

std::string cell(const Sums& sums, std::size_t row, std::size_t column) {
  std::string text;
  long total = 0;
  for (const LineKind line : kLines) {
    const auto found = sums.find({row, line});
    const long value = found == sums.end() ? 0 : found->second[column];
    total += value;
    text += (text.empty() ? "" : " / ") + std::to_string(value);
  }
  return column == kRuns || total == 0 ? std::to_string(total) : text;
}

}  // namespace

std::string tables(const Plan& plan, const Sums& sums) {
  std::ostringstream out;
  for (std::size_t row = 0; row < plan.rows.size(); ++row) {
    const auto group = static_cast<std::size_t>(plan.rows[row].group);
    if (row == 0 || plan.rows[row - 1].group != plan.rows[row].group) {
      out << "\n### " << kHeadings[group] << "\n\n| fault |";
      for (const std::string_view name : kColumnNames) out << " " << name << " |";
      out << "\n|";
      for (std::size_t i = 0; i <= kColumns; ++i) out << "---|";
      out << "\n";
    }
    out << "| `" << plan.rows[row].fault << "` |";
    for (std::size_t column = 0; column < kColumns; ++column) out << " " << cell(sums, row, column) << " |";
    out << "\n";
  }
  return out.str();
}

std::string numbers(const Plan& plan, const Sums& sums) {
  std::ostringstream out;
  for (const auto& [at, tally] : sums) {
    out << keyOf(plan, at);
    for (const long value : tally) out << " " << value;
    out << "\n";
  }
  return out.str();
}

std::string whatIsWorse(const Plan& plan, const Sums& sums, const std::string& accepted) {
  std::map<std::string, Tally> before;
  std::istringstream in(accepted);
  for (std::string group, fault, line; in >> group >> fault >> line;) {
    Tally& tally = before[group.append(" ").append(fault).append(" ").append(line)];
    for (long& value : tally) in >> value;
  }
  std::ostringstream out;
  for (const auto& [at, tally] : sums) {
    const Tally& known = before[keyOf(plan, at)];
    for (std::size_t column = kRuns + 1; column < kColumns; ++column) {
      if (tally[column] <= known[column]) continue;
      out << keyOf(plan, at) << ": " << kColumnNames[column] << " " << tally[column] << ", accepted " << known[column]
          << "\n";
    }
  }
  return out.str();
}

}  // namespace mirvane::campaign
