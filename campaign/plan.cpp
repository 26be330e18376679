#include "campaign/plan.h"

#include <algorithm>
#include <map>

#include "campaign/kills.h"
#include "campaign/limits.h"
#include "campaign/service.h"
#include "campaign/within.h"

namespace mirvane::campaign {
namespace {

using Group = Row::Group;
using Texts = std::vector<std::string>;

/// Where the service's scenarios stand among what is done.
constexpr std::size_t kServiceWork = static_cast<std::size_t>(Work::kSaved) + kScenarios;

/// One of so many runs is in the share.
constexpr std::uint32_t kShare = 48;

// In the order of their enumerations.
const std::string kWorks[] = {"day",     "cards",   "sales",     "saved-1",   "saved-2",   "saved-3",  "saved-4",
                              "saved-5", "saved-6", "service-1", "service-2", "service-3", "service-4"};
const std::string kStrangers[] = {"", "other-register", "loop-plug", "scale"};
const std::string kWithins[] = {"", "calls", "calls-with-same", "connects-again", "lets-go"};

/// What is tried behind the name of a fault; the first is the one that comes together with others. A fault that is not
/// here is tried bare, or with 1 where it wants a number.
const std::map<std::string_view, Texts> kArguments = {
    {"late", {"700", "40", "200", "1500", "6000", "12000"}},
    {"delayed", {"700", "40", "200", "1500", "6000"}},
    {"split", {"350", "0", "25", "250", "2000"}},
    {"duplicate", {"100", "0", "5", "40", "300", "1000", "3000"}},
    {"cut", {"2"}},  // and every other byte, see below
    {"endless", {"4096"}},
    {"noise", {"00FF55AA", "02", "03", "06", "15", "0230302F"}},
    {"noise-within", {"00FF55AA", "02", "03", "06", "15", "0230302F"}},
    {"status", {"04", "02", "10", "20", "40", "FF"}},
    {"busy", {"14", "146"}},
    {"code", {"25", "1", "61", "81", "100", "158", "255"}},
    {"reply", {"00/00/06/", "00", "19/00/06/", "ZZ"}},
    {"till-frame delayed", {"700", "40", "1500", "6000"}},
    {"till-frame duplicate", {"100", "0", "40", "1000"}},
    {"till-frame cut", {"2", "99"}},
    {"till-frame noise", {"00FF55AA", "02", "06", "15", "18"}},
    {"till-frame noise-within", {"00FF55AA", "02", "03", "05", "15"}},
    {"till-ack delayed", {"700", "40", "6000"}},
    {"till-ack duplicate", {"100", "1000"}},
    {"till-ack noise", {"00FF55AA", "02", "15"}},
    {"till-ack noise-within", {"02"}},
    {"till-enq delayed", {"700", "40", "1500"}},
    {"till-enq duplicate", {"100", "1000"}},
    {"till-enq noise", {"00FF55AA", "02", "06"}},
    {"till-enq noise-within", {"02"}},
};

bool isRule(const std::string& rule) {
  try {
    emulator::Faults().add(rule);
    return true;
  } catch (const emulator::FaultError&) {
    return false;
  }
}

Texts variationsOf(const std::string& fault) {
  const auto known = kArguments.find(fault);
  if (known == kArguments.end()) return {isRule("next " + fault) ? fault : fault + " 1"};
  Texts all;
  for (const std::string& argument : known->second) all.push_back(std::string(fault).append(" ").append(argument));
  return all;
}

const Texts& faults() {
  static const Texts kAll = [] {
    Texts all = emulator::faultNames();
    // Half a frame is one that was cut, and of one byte nothing is left.
    std::erase_if(all, [](const std::string& fault) {
      return fault.starts_with("till-") &&
             (fault.ends_with(" half") || fault == "till-ack cut" || fault == "till-enq cut");
    });
    return all;
  }();
  return kAll;
}

std::string after(std::size_t commands, const std::string& rest) {
  return "after " + std::to_string(commands) + " " + rest;
}

/// What one rule alone comes to; kept, as many pairs ask.
const Tally& alone(LineKind line, Work work, const std::string& rule) {
  static std::map<std::tuple<LineKind, Work, std::string>, Tally> known;
  const auto [found, isNew] = known.try_emplace({line, work, rule});
  if (isNew) {
    Machine machine(line);
    found->second = runDay(machine, work, {rule});
  }
  return found->second;
}

class Planner {
 public:
  Plan make() {
    for (const LineKind line : kLines) {
      for (const std::size_t work : {0, 1}) {
        Machine machine(line);
        runDay(machine, static_cast<Work>(work), {});
        for (std::size_t at = 0; at < machine.tap.commands.size(); ++at) {
          planCommand(line, kWorks[work], at, machine.tap.answered[at]);
        }
      }
      planRates(line);
      for (std::size_t scenario = 0; scenario < kScenarios; ++scenario) planKills(line, scenario);
      for (std::size_t scenario = 0; scenario < kServiceScenarios; ++scenario) planService(line, scenario);
    }
    return std::move(plan_);
  }

 private:
  void planCommand(LineKind line, const std::string& work, std::size_t at, std::size_t answered) {
    for (const std::string& fault : faults()) {
      const std::string first = after(at, variationsOf(fault).front());
      for (const std::string& variation : variationsOf(fault)) {
        add(Group::kOnce, fault, line, {work, after(at, variation)});
      }
      for (std::size_t bytes = 0; fault == "cut" && bytes < answered; ++bytes) {
        if (bytes != 2) add(Group::kOnce, fault, line, {work, after(at, "cut " + std::to_string(bytes))});
      }
      add(Group::kLasting, fault, line, {work, after(at, "always " + variationsOf(fault).front())});
      for (const std::string& second : faults()) {
        const std::string limit = limitOf(fault, second, line);
        add(Group::kPairs, limit.empty() ? "any other two" : limit, line,
            {work, first, after(at + 1, variationsOf(second).front())});
      }
      for (const std::string& within : kWithins) {
        if (!within.empty()) add(Group::kWithin, within, line, {work, within, first});
      }
    }
    // Before the first command nobody knows which register it is.
    for (const std::string& stranger : kStrangers) {
      if (line != LineKind::kSerial || at == 0 || stranger.empty()) continue;
      for (const char* unplug : {"unplug 5", "unplug-after 5"}) {
        add(Group::kStrangers, stranger, line, {work, stranger, after(at, unplug)});
      }
    }
  }

  // A thousand sales, twenty times over.
  void planRates(LineKind line) {
    for (const std::string fault : {"lost", "noise", "noise-within", "delayed 300", "delayed 1500", "duplicate 100"}) {
      // A serial line keeps its order.
      if (line == LineKind::kSerial && fault.find(' ') != std::string::npos) continue;
      for (const std::string percent : {"0.1%", "1%", "5%"}) {
        for (int seed = 1; seed <= 20; ++seed) {
          Texts words = {"sales", "seed " + std::to_string(seed)};
          for (const char* what : {"", "till-frame ", "till-ack ", "till-enq "}) {
            words.push_back(std::string("next ").append(percent).append(" ").append(what).append(fault));
          }
          add(Group::kRates, std::string(percent).append(" ").append(fault), line, words);
        }
      }
    }
  }

  void planKills(LineKind line, std::size_t scenario) {
    const std::string& work = kWorks[static_cast<std::size_t>(Work::kSaved) + scenario];
    const Moments moments = countMoments(line, scenario);
    const auto killed = [](long moment) { return "killed after " + std::to_string(moment); };
    for (long moment = 0; moment < moments.selling; ++moment) {
      add(Group::kAnswers, "killed", line, {work, killed(moment)});
      // The second time at a moment that moves on with the first.
      const long second = moment * 7 % moments.later;
      for (const long again : {second, (second + moments.later / 2) % moments.later}) {
        add(Group::kAnswers, "killed twice", line, {work, killed(moment), killed(again)});
      }
    }
    for (const std::string& fault : faults()) {
      const bool comesLate = line != LineKind::kSerial && fault == "till-frame delayed";
      for (std::size_t at = 0; at < moments.commands; ++at) {
        for (const std::string& variation : variationsOf(fault)) {
          add(Group::kAnswers, comesLate ? fault : "every other fault", line, {work, after(at, variation)});
        }
      }
    }
  }

  void planService(LineKind line, std::size_t scenario) {
    const std::string& work = kWorks[kServiceWork + scenario];
    const Moments moments = countServiceMoments(line, scenario);
    const auto killed = [](long moment) { return "killed after " + std::to_string(moment); };
    for (long moment = 0; moment < moments.selling; ++moment) {
      add(Group::kService, "killed", line, {work, killed(moment)});
      add(Group::kService, "killed twice", line, {work, killed(moment), killed(moment * 7 % moments.later)});
    }
    for (long write = 0; write < countServiceWrites(line, scenario); ++write) {
      add(Group::kService, "disk full", line, {work, "store fails after " + std::to_string(write)});
      add(Group::kService, "read-only", line, {work, "store read-only after " + std::to_string(write)});
    }
    for (const std::string& fault : faults()) {
      const std::string limit = limitOf(fault, "", line);
      for (std::size_t at = 0; at < moments.commands; ++at) {
        for (const std::string& variation : variationsOf(fault)) {
          add(Group::kService, limit.empty() ? "every other fault" : limit, line, {work, after(at, variation)});
        }
      }
    }
  }

  void add(Group group, const std::string& name, LineKind line, Texts words) {
    const auto [found, isNew] = rows_.try_emplace({group, name}, plan_.rows.size());
    if (isNew) plan_.rows.push_back({group, name});
    plan_.runs.push_back({found->second, line, std::move(words)});
  }

  Plan plan_;
  std::map<std::pair<Group, std::string>, std::size_t> rows_;
};

}  // namespace

std::string Run::text() const {
  std::string all = std::to_string(static_cast<int>(line));
  for (const std::string& word : words) all.append(" '").append(word).append("'");
  return all;
}

bool Run::isInShare() const {
  constexpr std::uint32_t kOffset = 2166136261U;
  constexpr std::uint32_t kPrime = 16777619U;
  std::uint32_t hash = kOffset;
  for (const char c : text()) hash = (hash ^ static_cast<unsigned char>(c)) * kPrime;
  return (hash >> 8) % kShare == 0;
}

Tally Run::run(const Log& log) const {
  Work work = Work::kDay;
  Stranger stranger = Stranger::kNone;
  Within within = Within::kNothing;
  Texts rules;
  for (const std::string& word : words) {
    const auto isOneOf = [&word](const auto& names, auto& value) {
      const auto found = std::ranges::find(names, word);
      if (found == std::end(names)) return false;
      value = static_cast<std::remove_reference_t<decltype(value)>>(found - std::begin(names));
      return true;
    };
    if (!isOneOf(kWorks, work) && !isOneOf(kStrangers, stranger) && !isOneOf(kWithins, within)) rules.push_back(word);
  }
  if (within != Within::kNothing) return compareDays(line, work, rules, within);
  Machine machine(line, stranger);
  const auto number = static_cast<std::size_t>(work);
  if (number >= kServiceWork) return runService(machine, number - kServiceWork, rules, log);
  if (work >= Work::kSaved) {
    return runSaved(machine, number - static_cast<std::size_t>(Work::kSaved), rules);
  }
  Tally tally = runDay(machine, work, rules, log);
  for (std::size_t i = 0; i < 2 && rules.size() == 2; ++i) {
    const Tally& known = alone(line, work, rules[i]);
    for (std::size_t column = kFirstFinding; column < kColumns; ++column) {
      tally[column] = std::max(tally[column] - known[column], 0L);
    }
  }
  return tally;
}

Plan makePlan() { return Planner().make(); }

}  // namespace mirvane::campaign
