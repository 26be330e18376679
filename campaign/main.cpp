#include <fstream>
#include <iostream>
#include <sstream>

#include "campaign/day.h"
#include "campaign/kills.h"
#include "campaign/runner.h"
#include "campaign/table.h"

// Every fault of the emulator at every command of a day, and what a till is told against what the register booked; and
// a till that is killed at every moment, and what it then says.
//
//   campaign SOURCES                writes the tables into docs/reliability.md and docs/after-a-failure.md below
//   SOURCES,
//                                   and the share's numbers into campaign/accepted.txt
//   campaign SOURCES share          runs a share of both; fails when a row is worse than those numbers, or an answer
//   wrong campaign SOURCES find FAULT     names the days of that fault's rows on which something was found campaign
//   SOURCES LINE RULE...   one day, call by call; LINE is 0 serial, 1 or 2 network that acknowledges the frame
//                                   or the ENQ
namespace mirvane::campaign {
namespace {

constexpr const char* kAccepted = "/campaign/accepted.txt";

Tally only(Column column) {
  Tally tally{};
  tally[kRuns] = tally[column] = 1;
  return tally;
}

std::vector<Tally> runPlan(const Plan& plan) {
  const auto run = [&plan](std::size_t index) {
    Machine machine(plan.runs[index].line);
    return runDay(machine, plan.runs[index].rules);
  };
  return runAll(plan.runs.size(), 2, run, only(kCrash), only(kHang));
}

Sums sumsOf(const Plan& plan, const std::vector<Tally>& tallies, bool shareOnly) {
  Sums sums;
  for (std::size_t i = 0; i < plan.runs.size(); ++i) {
    const Run& run = plan.runs[i];
    if (!shareOnly || run.isInShare()) add(sums[{run.row, run.line}], tallies[i]);
  }
  return sums;
}

std::string contentsOf(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

/// Puts `text` between the page's marks.
void writeInto(const std::string& path, const std::string& text) {
  constexpr std::string_view kBegin = "<!-- written by ./run campaign -->\n";
  constexpr std::string_view kEnd = "<!-- end -->";
  std::string page = contentsOf(path);
  const std::size_t begin = page.find(kBegin) + kBegin.size();
  page.replace(begin, page.find(kEnd, begin) - begin, text + "\n");
  std::ofstream(path) << page;
}

int runShare(Plan plan, const std::string& accepted) {
  std::erase_if(plan.runs, [](const Run& run) { return !run.isInShare(); });
  const std::string worse = whatIsWorse(plan, sumsOf(plan, runPlan(plan), true), contentsOf(accepted));
  const AnswersTable answers = proveAnswers(true);
  std::cout << plan.runs.size() << " days, " << answers.states << " states of a till\n";
  if (answers.failures > 0) std::cout << answers.text;
  if (!worse.empty()) std::cout << worse << "to see it all, and to accept it: ./run campaign\n";
  return worse.empty() && answers.failures == 0 ? 0 : 1;
}

int runEverything(const Plan& plan, const std::string& sources) {
  const std::vector<Tally> tallies = runPlan(plan);
  const std::string days = tables(plan, sumsOf(plan, tallies, false));
  std::cout << days << "\n";
  writeInto(sources + "/docs/reliability.md", days);
  std::ofstream(sources + kAccepted) << numbers(plan, sumsOf(plan, tallies, true));
  const AnswersTable answers = proveAnswers(false);
  std::cout << answers.text;
  writeInto(sources + "/docs/after-a-failure.md", "\n" + answers.text);
  return answers.failures == 0 ? 0 : 1;
}

std::string findings(const Tally& tally) {
  std::string text;
  for (std::size_t i = kRuns + 1; i < kColumns; ++i) {
    if (tally[i] != 0)
      text += (text.empty() ? "" : ", ") + std::string(kColumnNames[i]) + " " + std::to_string(tally[i]);
  }
  return text;
}

int find(Plan plan, const std::string& fault) {
  std::erase_if(plan.runs, [&](const Run& run) { return plan.rows[run.row].fault != fault; });
  const std::vector<Tally> tallies = runPlan(plan);
  for (std::size_t i = 0; i < plan.runs.size(); ++i) {
    const std::string found = findings(tallies[i]);
    if (found.empty()) continue;
    std::cout << static_cast<int>(plan.runs[i].line);
    for (const std::string& rule : plan.runs[i].rules) std::cout << " '" << rule << "'";
    std::cout << ": " << found << "\n";
  }
  return 0;
}

int runOne(LineKind line, const std::vector<std::string>& rules) {
  Machine machine(line);
  const Tally tally = runDay(machine, rules, [](const std::string& call) { std::cout << call << "\n"; });
  std::cout << findings(tally) << "\n";
  return 0;
}

int run(const std::vector<std::string>& arguments) {
  if (arguments.size() == 1) return runEverything(makePlan(), arguments[0]);
  if (arguments[1] == "share") return runShare(makePlan(), arguments[0] + kAccepted);
  if (arguments[1] == "find") return find(makePlan(), arguments.at(2));
  return runOne(kLines[std::stoul(arguments[1])], {arguments.begin() + 2, arguments.end()});
}

}  // namespace
}  // namespace mirvane::campaign

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  try {
    return mirvane::campaign::run({argv + 1, argv + argc});
  } catch (const std::exception& error) {
    std::fprintf(stderr, "campaign: %s\n", error.what());
    return 2;
  }
}
