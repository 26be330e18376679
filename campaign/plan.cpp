#include "campaign/plan.h"

#include <map>
#include <numeric>

#include "campaign/day.h"

namespace mirvane::campaign {
namespace {

using Group = Row::Group;
using Texts = std::vector<std::string>;

/// One of so many runs is in the share.
constexpr std::uint32_t kShare = 24;

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

/// The faults in what the register sends. Those in what the till sends are named by what they strike.
Texts faultsOfAnswers() {
  Texts faults = emulator::faultNames();
  std::erase_if(faults, [](const std::string& fault) { return fault.starts_with("till-"); });
  return faults;
}

std::string after(std::size_t commands, const std::string& rest) {
  return "after " + std::to_string(commands) + " " + rest;
}

}  // namespace

bool Run::isInShare() const {
  constexpr std::uint32_t kOffset = 2166136261U;
  constexpr std::uint32_t kPrime = 16777619U;
  std::uint32_t hash = kOffset + static_cast<std::uint32_t>(line);
  for (const std::string& rule : rules) {
    for (const char c : rule) hash = (hash ^ static_cast<unsigned char>(c)) * kPrime;
  }
  return (hash >> 8) % kShare == 0;
}

Texts singleFaults() {
  Texts all;
  for (const std::string& fault : faultsOfAnswers()) {
    for (std::string& rule : variationsOf(fault)) all.push_back(std::move(rule));
  }
  return all;
}

Plan makePlan() {
  const Texts faults = faultsOfAnswers();
  Plan plan;
  for (const Group group : {Group::kOnce, Group::kLasting, Group::kPairs}) {
    for (const std::string& fault : faults) plan.rows.push_back({group, fault});
  }
  for (const LineKind line : kLines) {
    Machine machine(line);
    runDay(machine, {});
    const std::size_t commands = machine.tap.commands.size();
    for (std::size_t f = 0; f < faults.size(); ++f) {
      const Texts variations = variationsOf(faults[f]);
      const auto add = [&](Group group, Texts rules) {
        plan.runs.push_back({static_cast<std::size_t>(group) * faults.size() + f, line, std::move(rules)});
      };
      for (std::size_t at = 0; at < commands; ++at) {
        for (const std::string& fault : variations) add(Group::kOnce, {after(at, fault)});
        add(Group::kLasting, {after(at, "always " + variations.front())});
        if (faults[f] == "cut") {
          for (std::size_t bytes = 0; bytes < machine.tap.answered[at]; ++bytes) {
            if (bytes != 2) add(Group::kOnce, {after(at, "cut " + std::to_string(bytes))});
          }
        }
        for (const std::string& second : faults) {
          add(Group::kPairs, {after(at, variations.front()), after(at + 1, variationsOf(second).front())});
        }
      }
    }
  }
  return plan;
}

}  // namespace mirvane::campaign
