#include "interface/door.h"

#include <algorithm>

#include "interface/outcome.h"
#include "protocol/device_codes.h"
#include "state/module_state.h"
#include "text/code_page.h"
#include "text/number_text.h"

namespace mirvane {
namespace {

using recorder::EventKind;

/// How a member reports its outcome.
struct Report {
  enum class Kind { kNone, kOutcome, kJournal } kind = Kind::kNone;
  /// Index of the parameter Result, which Exresult and SupressError_ follow, or of errorDesc.
  std::size_t at = 0;
  /// Index of the flag that says whether the operator sees anything, and its value for no; past the end if there is
  /// none.
  std::size_t flag = 0;
  bool silence = true;
};

Report reportOf(const Member& member) {
  const auto find = [&member](std::string_view name) {
    return static_cast<std::size_t>(std::ranges::find(member.parameters, name, &Parameter::name) -
                                    member.parameters.begin());
  };
  // A member that leaves its variables unchanged does nothing at all.
  if (!member.assigns) return {};
  if (const std::size_t at = find(Outcome::kNames.front().name); at < member.parameters.size()) {
    return {Report::Kind::kOutcome, at, at + 2, true};
  }
  if (const std::size_t at = find("errorDesc"); at < member.parameters.size()) {
    return {Report::Kind::kJournal, at, find("bWithForm"), false};
  }
  return {};
}

Outcome outcomeOf(const Report& report, CallArguments& arguments) {
  return Expanded<Outcome>::from(arguments, report.at);
}

void release() {
  releaseDriver();
  if (moduleState().facades == 0 && moduleState().traceActive) setTrace(false);
}

void finishCall() {
  Call& call = moduleState().call;
  // Shown even if the caller suppresses errors: the network endpoint has no switch for it.
  if (!call.networkFailure.empty()) {
    showBox(std::exchange(call.networkFailure, {}), platform::kCritical, kDeviceFamilyName);
  }
  forgetCall();
}

// An operation inside the door, from start to end.
class Inside {
 public:
  explicit Inside(bool isSilent) {
    Call& call = moduleState().call;
    call = {.isInside = true, .number = call.number + 1, .isSilent = isSilent};
  }
  Inside(const Inside&) = delete;
  Inside& operator=(const Inside&) = delete;
  ~Inside() { finishCall(); }
};

class RecordedCall {
 public:
  explicit RecordedCall(const Text& name) : name_(name) { record(EventKind::kCall, 0, name); }

  void ended(std::int32_t number, TextView why = {}) const {
    const auto milliseconds = static_cast<std::int32_t>((clock().elapsed() - begin_) * 1000);
    const Text text = name_ + u", " + numberText(milliseconds) + u" ms";
    record(EventKind::kEnded, number, why.empty() ? text : text + u": " + Text(why));
  }

 private:
  static platform::Clock& clock() { return moduleState().platform->clock; }

  const Text& name_;
  double begin_ = clock().elapsed();
};

/// A row of the table, and what the door needs to know about it.
struct Entrance {
  Member member;
  Report report;
  Text name;
  /// For the member that connects: whether a port is open.
  bool (*isConnected)() = nullptr;

  Value enter(Object& self, CallArguments& arguments) const {
    // The component itself calls the driver that it has chosen; no program holds that.
    if (&self == moduleState().currentDriver.get()) return member.body(self, arguments);
    arguments.detach(report.at);
    if (report.kind == Report::Kind::kOutcome) arguments.detach(report.at + 1);
    if (moduleState().call.isInside) return refuse(arguments);
    const bool hasFlag = report.flag < member.parameters.size();
    const Inside inside(hasFlag && arguments.get<bool&>(report.flag) == report.silence);
    return moduleState().recorder == nullptr ? member.body(self, arguments) : record(self, arguments);
  }

 private:
  Value refuse(CallArguments& arguments) const {
    arguments.leaveOthers();
    constexpr auto kBusy = static_cast<std::int16_t>(DeviceCode::kBusy);
    if (report.kind == Report::Kind::kJournal) {
      arguments.get<Text&>(report.at) = numberText(std::int32_t{kBusy}) + u"~" + Text(deviceErrorText(kBusy));
      return std::int32_t{kBusy};
    }
    ModuleState& state = moduleState();
    const bool hasDriver = state.currentDriver != nullptr && state.fiscalType != FISCAL_unknown;
    const bool succeeds = isConnected != nullptr && hasDriver && isConnected();
    if (succeeds) state.call.releasesDriver = false;
    outcomeOf(report, arguments).set(succeeds ? Reply() : Reply(kBusy, Text(deviceErrorText(kBusy))));
    return {};
  }

  Value record(Object& self, CallArguments& arguments) const {
    const RecordedCall recordedCall(name);
    try {
      Value value = member.body(self, arguments);
      if (report.kind == Report::Kind::kJournal) {
        recordedCall.ended(convertTo<std::int32_t>(value));
      } else {
        const Outcome outcome = outcomeOf(report, arguments);
        recordedCall.ended(outcome.Result, outcome.Result == 0 ? TextView() : outcome.Exresult);
      }
      return value;
    } catch (const AutomationError& error) {
      recordedCall.ended(static_cast<std::int32_t>(error.code()), u"an automation error");
      throw;
    }
  }
};

}  // namespace

ClassInfo throughDoor(ClassInfo table, std::string_view connect, bool (*isConnected)()) {
  std::vector<Member> members = table.members();
  for (Member& member : members) {
    const Report report = reportOf(member);
    if (report.kind == Report::Kind::kNone) continue;
    const Entrance entrance{member, report, fromUtf8(member.name), member.name == connect ? isConnected : nullptr};
    member.body = [entrance](Object& self, CallArguments& arguments) { return entrance.enter(self, arguments); };
  }
  return {table.name(), std::move(members)};
}

void forgetCall() {
  Call& call = moduleState().call;
  if (!std::exchange(call.isInside, false)) return;
  if (std::exchange(call.releasesDriver, false)) release();
}

void endFacade() {
  ModuleState& state = moduleState();
  --state.facades;
  if (state.call.isInside) {
    state.call.releasesDriver = true;
  } else {
    release();
  }
}

}  // namespace mirvane
