#include <fstream>
#include <iostream>
#include <sstream>

#include "campaign/runner.h"
#include "campaign/table.h"

namespace mirvane::campaign {
namespace {

constexpr const char* kUsage = R"(Compares what a till is told with what the register booked.

  campaign SOURCES                 runs everything, about five minutes; writes the tables into docs/reliability.md
                                   and docs/after-a-failure.md below SOURCES, and what the share may find into
                                   campaign/accepted.txt. Fails if money goes wrong beyond the protocol's limits
  campaign SOURCES service [N]     runs the days of the service alone and writes their table; or one in N of them, and
                                   lists those that went wrong
  campaign SOURCES share           runs a share; also fails if it finds more than what is accepted
  campaign SOURCES find [ROW]      lists the days of that row, or of all rows, in which something was found
  campaign SOURCES LINE WORD...    one day, call by call. LINE is 0 serial, 1 or 2 a network that acknowledges the
                                   frame or the ENQ. A WORD is:
    day, cards, sales, saved-1 … saved-6                     what the till does: a day, declined cards and equal lines,
                                                             a thousand sales, a till that saves what it does
    service-1 … service-4                                    what callers have the service do
    other-register, loop-plug, scale                         which device is on the serial line when it comes back
    calls, calls-with-same, connects-again, lets-go          what the program does within its calls
    "killed after N"                                         of saved-… and service-…: the program ends at that moment
    "store fails after N"                                    of service-…: five writes do not reach the disk
    "store read-only after N"                                the same, until the service is started anew
    "seed N"                                                 seed for the rules with a rate
    anything else                                            a rule of the emulator: "after 3 till-ack lost"
)";

constexpr const char* kAccepted = "/campaign/accepted.txt";

Tally only(Column column) {
  Tally tally{};
  tally[kRuns] = tally[column] = 1;
  return tally;
}

std::vector<Tally> runPlan(const Plan& plan) {
  const auto run = [&plan](std::size_t index) { return plan.runs[index].run(); };
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

/// 1 when something must not be so.
int judge(const Plan& plan, const Sums& sums, const std::string& worse = {}) {
  const std::string wrong = mistakes(plan, sums);
  std::cout << wrong << worse;
  return wrong.empty() && worse.empty() ? 0 : 1;
}

std::string contentsOf(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

/// Puts `text` between the page's marks.
void writeInto(const std::string& path, const std::string& text, const std::string& words = {}) {
  const std::string kBegin = "<!-- written by ./run campaign" + words + " -->\n";
  constexpr std::string_view kEnd = "<!-- end -->";
  std::string page = contentsOf(path);
  const std::size_t begin = page.find(kBegin) + kBegin.size();
  page.replace(begin, page.find(kEnd, begin) - begin, text + "\n");
  std::ofstream(path) << page;
}

int runShare(Plan plan, const std::string& acceptedIn) {
  std::erase_if(plan.runs, [](const Run& run) { return !run.isInShare(); });
  const Sums sums = sumsOf(plan, runPlan(plan), true);
  std::string worse = whatIsWorse(plan, sums, contentsOf(acceptedIn));
  if (!worse.empty()) worse += "to see it all, and to accept it: ./run campaign\n";
  std::cout << plan.runs.size() << " runs\n";
  return judge(plan, sums, worse);
}

int runEverything(const Plan& plan, const std::string& sources) {
  const std::vector<Tally> tallies = runPlan(plan);
  const Sums sums = sumsOf(plan, tallies, false);
  const std::string days = tables(plan, sums, Row::Group::kOnce, Row::Group::kWithin);
  const std::string service = tables(plan, sums, Row::Group::kService, Row::Group::kService);
  const std::string answers = tables(plan, sums, Row::Group::kAnswers, Row::Group::kAnswers);
  std::cout << days << service << answers;
  writeInto(sources + "/docs/reliability.md", days);
  writeInto(sources + "/docs/reliability.md", service, " service");
  writeInto(sources + "/docs/after-a-failure.md", answers);
  std::ofstream(sources + kAccepted) << accepted(plan, sumsOf(plan, tallies, true));
  return judge(plan, sums);
}

/// One in `share` of the days.
int runServiceAlone(Plan plan, const std::string& sources, std::size_t share) {
  std::erase_if(plan.runs, [&](const Run& run) { return plan.rows[run.row].group != Row::Group::kService; });
  std::size_t number = 0;
  std::erase_if(plan.runs, [&](const Run&) { return number++ % share != 0; });
  const std::vector<Tally> tallies = runPlan(plan);
  for (std::size_t i = 0; share > 1 && i < plan.runs.size(); ++i) {
    if (!findings(tallies[i]).empty()) {
      std::cout << plan.runs[i].text() << ": " << findings(tallies[i]) << "\n";
    }
  }
  const Sums sums = sumsOf(plan, tallies, false);
  const std::string service = tables(plan, sums, Row::Group::kService, Row::Group::kService);
  std::cout << service;
  if (share == 1) writeInto(sources + "/docs/reliability.md", service, " service");
  return judge(plan, sums);
}

int find(Plan plan, const std::string& row) {
  std::erase_if(plan.runs, [&](const Run& run) {
    const bool isService = plan.rows[run.row].group == Row::Group::kService;
    return !row.empty() && (isService ? "service " : "") + plan.rows[run.row].name != row;
  });
  const std::vector<Tally> tallies = runPlan(plan);
  for (std::size_t i = 0; i < plan.runs.size(); ++i) {
    const std::string found = findings(tallies[i]);
    if (!found.empty()) std::cout << plan.runs[i].text() << ": " << found << "\n";
  }
  return 0;
}

int runOne(const Run& run) {
  const Tally tally = run.run([](const std::string& call) { std::cout << call << "\n"; });
  std::cout << findings(tally) << "\n";
  return 0;
}

int run(const std::vector<std::string>& arguments) {
  if (arguments.size() == 1) return runEverything(makePlan(), arguments[0]);
  if (arguments[1] == "share") return runShare(makePlan(), arguments[0] + kAccepted);
  if (arguments[1] == "service") {
    return runServiceAlone(makePlan(), arguments[0], arguments.size() > 2 ? std::stoul(arguments[2]) : 1);
  }
  if (arguments[1] == "find") return find(makePlan(), arguments.size() > 2 ? arguments[2] : "");
  return runOne({0, kLines[std::stoul(arguments[1])], {arguments.begin() + 2, arguments.end()}});
}

}  // namespace
}  // namespace mirvane::campaign

int main(int argc, char** argv) {
  if (argc < 2) {
    std::cerr << mirvane::campaign::kUsage;
    return 2;
  }
  try {
    return mirvane::campaign::run({argv + 1, argv + argc});
  } catch (const std::exception& error) {
    std::cerr << "campaign: " << error.what() << "\n";
    return 2;
  }
}
