#include "interface/recorded_calls.h"

#include <algorithm>

#include "interface/outcome.h"
#include "state/module_state.h"
#include "text/number_text.h"

namespace mirvane {
namespace {

using recorder::EventKind;

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

// `result`: the parameter Result, behind which Exresult stands; past the end where the member returns a number instead.
Value call(const Member& member, std::size_t result, const Text& name, Object& self, CallArguments& arguments) {
  const RecordedCall recordedCall(name);
  try {
    Value value = member.implementation(self, arguments);
    if (result == member.parameters.size()) {
      recordedCall.ended(convertTo<std::int32_t>(value));
    } else {
      const std::int16_t number = arguments.get<std::int16_t&>(result);
      recordedCall.ended(number, number == 0 ? TextView() : arguments.get<Text&>(result + 1));
    }
    return value;
  } catch (const AutomationError& error) {
    recordedCall.ended(static_cast<std::int32_t>(error.code()), u"an automation error");
    throw;
  }
}

}  // namespace

ClassInfo recorded(ClassInfo table) {
  std::vector<Member> members = table.members();
  for (Member& member : members) {
    const auto parameter =
        std::find_if(member.parameters.begin(), member.parameters.end(),
                     [](const Parameter& candidate) { return candidate.name == kOutcome.front().name; });
    const bool returnsNumber = member.kind == MemberKind::method && member.result.kind == TypeKind::integer32;
    if (parameter == member.parameters.end() && !returnsNumber) continue;
    const auto result = static_cast<std::size_t>(parameter - member.parameters.begin());
    const std::string_view itsName = member.name;
    member.implementation = [member, result, name = fromUtf8(itsName)](Object& self, CallArguments& arguments) {
      if (moduleState().recorder == nullptr) return member.implementation(self, arguments);
      return call(member, result, name, self, arguments);
    };
  }
  return {table.name(), std::move(members)};
}

}  // namespace mirvane
