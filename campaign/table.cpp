#include "campaign/table.h"

#include <algorithm>
#include <sstream>

#include "campaign/limits.h"

namespace mirvane::campaign {
namespace {

struct Heading {
  std::string_view name, text, runs;
  /// Rows without findings are listed too.
  bool showsAll = false;
};
constexpr Heading kHeadings[] = {
    {"once", "One fault", "days"},
    {"lasting", "A fault from one command on", "days"},
    {"pairs", "Two faults in a row: what neither causes alone", "days"},
    {"rates", "Faults at random", "sales"},
    {"strangers", "Another device on the serial line when it comes back", "days"},
    {"within", "Calls from within a call", "days"},
    {"answers", "A till that saves what it does", "states", true},
    {"service", "Receipts over HTTP", "days", true},
};
constexpr std::string_view kLineNames[] = {"serial", "frame", "enq"};

/// The three lines of a row.
struct Tallies {
  Tallies(const Sums& sums, std::size_t row) {
    for (std::size_t i = 0; i < all.size(); ++i) {
      const auto found = sums.find({row, kLines[i]});
      if (found != sums.end()) all[i] = found->second;
    }
  }
  long total(std::size_t column) const { return all[0][column] + all[1][column] + all[2][column]; }
  bool hasFindings() const {
    return std::ranges::any_of(all, [](const Tally& tally) { return !findings(tally).empty(); });
  }
  std::string cell(std::size_t column) const {
    const long sum = total(column);
    if (column < kFirstFinding || sum == 0) return std::to_string(sum);
    return std::to_string(all[0][column]) + " / " + std::to_string(all[1][column]) + " / " +
           std::to_string(all[2][column]);
  }

  std::array<Tally, std::size(kLines)> all{};
};

std::string keyOf(const Plan& plan, std::pair<std::size_t, LineKind> at) {
  const Row& row = plan.rows[at.first];
  return std::string(kHeadings[static_cast<std::size_t>(row.group)].name) + ", " + row.name + ", " +
         std::string(kLineNames[static_cast<std::size_t>(at.second)]);
}

std::string table(const Plan& plan, const Sums& sums, std::size_t group) {
  std::ostringstream out;
  std::string without;
  std::array<bool, kColumns> isShown{true};
  Tally all{};
  for (std::size_t row = 0; row < plan.rows.size(); ++row) {
    if (static_cast<std::size_t>(plan.rows[row].group) != group) continue;
    const Tallies tallies(sums, row);
    for (std::size_t i = 0; i < kColumns; ++i) {
      all[i] += tallies.total(i);
      isShown[i] = isShown[i] || tallies.total(i) > 0;
    }
    if (!tallies.hasFindings() && !kHeadings[group].showsAll)
      without += (without.empty() ? "`" : ", `") + plan.rows[row].name + "`";
  }
  out << "\n### " << kHeadings[group].text << "\n\n";
  if (kHeadings[group].showsAll || !findings(all).empty()) {
    std::string rule = "|---|";
    out << "| |";
    for (std::size_t i = 0; i < kColumns; ++i) {
      if (isShown[i]) rule += "---|";
      if (isShown[i]) out << " " << (i == kRuns ? kHeadings[group].runs : kColumnNames[i]) << " |";
    }
    out << "\n" << rule << "\n";
    for (std::size_t row = 0; row < plan.rows.size(); ++row) {
      const Tallies tallies(sums, row);
      const bool isListed = kHeadings[group].showsAll || tallies.hasFindings();
      if (static_cast<std::size_t>(plan.rows[row].group) != group || !isListed) continue;
      out << "| `" << plan.rows[row].name << "` |";
      for (std::size_t i = 0; i < kColumns; ++i) {
        if (isShown[i]) out << " " << tallies.cell(i) << " |";
      }
      out << "\n";
    }
    out << "\n";
  }
  if (!without.empty()) out << "No difference was found under " << without << ".\n\n";
  out << "Total: " << all[kRuns] << " " << kHeadings[group].runs;
  if (all[kVisits] > 0) out << ", " << all[kVisits] << " " << kColumnNames[kVisits];
  out << ".\n";
  return out.str();
}

}  // namespace

std::string tables(const Plan& plan, const Sums& sums, Row::Group first, Row::Group last) {
  std::string all;
  for (auto group = static_cast<std::size_t>(first); group <= static_cast<std::size_t>(last); ++group) {
    all += table(plan, sums, group);
  }
  return all;
}

std::string mistakes(const Plan& plan, const Sums& sums) {
  std::string all;
  for (const auto& [at, tally] : sums) {
    const std::string found = mistakes(tally, plan.rows[at.first].name, at.second);
    if (!found.empty()) all += keyOf(plan, at) + ": " + found + ", and the protocol could tell\n";
  }
  return all;
}

std::string accepted(const Plan& plan, const Sums& sums) {
  std::ostringstream out;
  for (const auto& [at, tally] : sums) {
    if (const std::string found = findings(tally); !found.empty()) out << keyOf(plan, at) << ": " << found << "\n";
  }
  return out.str();
}

std::string whatIsWorse(const Plan& plan, const Sums& sums, const std::string& before) {
  std::map<std::string, std::string> known;
  std::istringstream in(before);
  for (std::string line; std::getline(in, line);) known[line.substr(0, line.find(": "))] = line;
  std::ostringstream out;
  for (const auto& [at, tally] : sums) {
    const std::string& line = known[keyOf(plan, at)];
    for (std::size_t i = kFirstFinding; i < kColumns; ++i) {
      const std::string name = std::string(kColumnNames[i]) + " ";
      const std::size_t found = line.find(name, line.find(": ") + 1);
      const long most = found == std::string::npos ? 0 : std::stol(line.substr(found + name.size()));
      if (tally[i] > most) out << keyOf(plan, at) << ": " << name << tally[i] << ", accepted " << most << "\n";
    }
  }
  return out.str();
}

}  // namespace mirvane::campaign
