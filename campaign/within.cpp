#include "campaign/within.h"

#include <algorithm>

#include "campaign/till.h"
#include "facade/fiscal_trevik_module.h"
#include "link/open_port.h"
#include "protocol/device_codes.h"
#include "text/code_page.h"

namespace mirvane::campaign {
namespace {

std::size_t placeOf(std::string_view parameter, const Member& member) {
  return static_cast<std::size_t>(std::ranges::find(member.parameters, parameter, &Parameter::name) -
                                  member.parameters.begin());
}

/// A member that reports, and whose it is: null for the facade's.
using Operation = std::pair<ObjectPtr, const Member*>;

const std::vector<Operation>& operations() {
  static const std::vector<Operation> kOperations = [] {
    std::vector<Operation> all;
    for (const ObjectPtr& object : {ObjectPtr(), createObject("clsAdjust"), createObject("FiscalJournal")}) {
      for (const Member& member : (object ? object->classInfo() : fiscalTrevikModule::describe()).members()) {
        const std::size_t report = std::min(placeOf("Result", member), placeOf("errorDesc", member));
        // What assigns nothing does nothing; connecting is answered.
        const bool isRefused = report < member.parameters.size() && member.assigns && member.name != "Connect_";
        if (isRefused) all.emplace_back(object, &member);
      }
    }
    return all;
  }();
  return kOperations;
}

/// The program whose code runs.
class Visitor {
 public:
  Visitor(Within does, std::size_t first) : does_(does), next_(first) {}

  void visit(Till& till) {
    constexpr int kCallsAtOnce = 4;
    for (int i = 0; i < kCallsAtOnce && (does_ == Within::kCalls || does_ == Within::kCallsWithSame); ++i) {
      call(operations()[next_++ % operations().size()], till);
    }
    if (does_ == Within::kConnectsAgain) {
      till.changeFacade();
      till.facade().call("Connect_", u"COM1", till.Result, till.Exresult, till.SupressError_);
      // Where no port is open yet it is refused.
      expect(till.Result == 0 || !thePort().isOpen());
    }
    if (does_ == Within::kLetsGo && calls == 0) {
      till.changeFacade();
      expect(true);
    }
  }

  long calls = 0, letIn = 0;

 private:
  void call(const Operation& operation, Till& till) {
    const auto& [object, member] = operation;
    std::int16_t ownResult = 0;
    Text ownText;
    const bool isSame = does_ == Within::kCallsWithSame;
    std::int16_t& result = isSame ? till.Result : ownResult;
    Text& text = isSame ? till.Exresult : ownText;
    std::vector<Value> variables(member->parameters.size());
    std::vector<Argument> arguments;
    for (std::size_t i = 0; i < variables.size(); ++i) {
      const Parameter& parameter = member->parameters[i];
      if (parameter.type.kind == TypeKind::object) variables[i] = createObject(parameter.type.name);
      Reference variable = &variables[i];
      if (parameter.name == "Result") variable = &result;
      if (parameter.name == "Exresult" || parameter.name == "errorDesc") variable = &text;
      arguments.emplace_back(variable);
    }
    Object& called = object ? *object : till.facade();
    const Value returned = called.invoke(member->name, Access::callOrRead, arguments);
    const bool isJournal = placeOf("Result", *member) == variables.size();
    expect((isJournal ? convertTo<std::int16_t>(returned) : result) == static_cast<std::int16_t>(DeviceCode::kBusy));
  }

  void expect(bool isRefused) {
    ++calls;
    letIn += isRefused ? 0 : 1;
  }

  const Within does_;
  std::size_t next_;
};

/// Of each call what it was told, what was booked and what went over the line; at the end the paper.
using Transcript = std::vector<std::string>;

}  // namespace

Tally compareDays(LineKind line, Work work, const std::vector<std::string>& rules, Within within) {
  Visitor visitor(within, rules.empty() ? 0 : std::hash<std::string>()(rules.front()));
  std::size_t firstVisit = 0;
  const auto day = [&](bool isVisited) {
    Machine machine(line);
    Transcript transcript;
    std::size_t sent = 0;
    const auto visit = [&](Till& till) {
      if (visitor.calls == 0) firstVisit = transcript.size();
      visitor.visit(till);
    };
    const auto log = [&](const std::string& call) {
      transcript.push_back(call);
      for (; sent < machine.tap.commands.size(); ++sent) transcript.back() += " " + machine.tap.commands[sent];
    };
    runDay(machine, work, rules, log, isVisited ? Visit(visit) : Visit());
    for (const emulator::Document& document : machine.device.roll().documents()) {
      for (const emulator::PaperLine& paperLine : document.lines) transcript.push_back(toUtf8(paperLine.text));
    }
    return transcript;
  };
  Transcript visited = day(true);
  Transcript alone = day(false);
  // Behind that call the till is not connected any more.
  if (within == Within::kLetsGo) {
    for (Transcript* transcript : {&visited, &alone}) transcript->resize(std::min(firstVisit + 1, transcript->size()));
  }
  Tally tally{};
  tally[kRuns] = 1;
  tally[kVisits] = visitor.calls;
  tally[kLetIn] = visitor.letIn;
  tally[kDisturbed] = visited == alone ? 0 : 1;
  return tally;
}

}  // namespace mirvane::campaign
