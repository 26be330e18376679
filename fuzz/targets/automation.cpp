// Arguments of any kind, into every member of every class by name. An input: calls, each a byte that picks the class, a
// byte that picks the member, a byte of how it is accessed and how many arguments there are besides those of its table,
// and the arguments: a byte of kind, then its value.

#include <deque>

#include "component/component.h"
#include "driver/fiscal_varlen_module2.h"
#include "fuzz/machine.h"
#include "text/code_page.h"

namespace mirvane::fuzz {
namespace {

/// Variables of every type, for arguments by reference.
class Caller {
 public:
  explicit Caller(const std::vector<ObjectPtr>& objects) : objects_(objects) {}

  Argument argument(Input& input) {
    const unsigned kind = input.byte();
    if (kind % 16 == 15) return {};
    Value value = valueOf(kind % 16, input);
    if ((kind & 0x40U) != 0) return Argument(Reference(&variables_.emplace_back(std::move(value))));
    if ((kind & 0x80U) != 0) return typedReference(std::move(value));
    return Argument(std::move(value));
  }

  /// To see that nothing was written.
  std::vector<Value> state() const {
    std::vector<Value> all(variables_.begin(), variables_.end());
    all.insert(all.end(), typed_.begin(), typed_.end());
    return all;
  }

 private:
  Value valueOf(unsigned kind, Input& input) {
    switch (kind) {
      case 0:
        return {};
      case 1:
        return Null{};
      case 2:
        return input.byte() % 2 == 0;
      case 3:
        return input.byte();
      case 4:
        return static_cast<std::int16_t>(input.number());
      case 5:
        return static_cast<std::int32_t>(input.number());
      case 6:
        return input.real();
      case 7:
        return Date{input.real(), fromUtf8(input.line())};
      case 8:
        return ObjectPtr();
      case 9:
      case 10:
        return objects_[input.byte() % objects_.size()];
      case 11:
        return std::int16_t{1};
      case 12:
        return 1.0;
      default:
        return fromUtf8(input.line());
    }
  }

  // A reference to what a slot of `typed_` holds.
  Argument typedReference(Value value) {
    return std::visit(
        []<class T>(T& held) {
          if constexpr (std::is_constructible_v<Reference, T*>) {
            return Argument(Reference(&held));
          } else {
            return Argument();
          }
        },
        typed_.emplace_back(std::move(value)));
  }

  const std::vector<ObjectPtr>& objects_;
  std::deque<Value> variables_, typed_;
};

// NaN is not even the same as itself.
bool isSame(const std::vector<Value>& a, const std::vector<Value>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const Value& x, const Value& y) {
    const auto* number = std::get_if<double>(&x);
    const auto* date = std::get_if<Date>(&x);
    const bool isNaN = (number != nullptr && *number != *number) || (date != nullptr && date->days != date->days);
    return isNaN ? x.index() == y.index() : x == y;
  });
}

std::vector<ObjectPtr> everyObject(const ObjectPtr& till) {
  std::vector<ObjectPtr> objects{till, moduleState().currentDriver};
  for (const PublicClass& entry : publicClasses()) objects.push_back(entry.create());
  return objects;
}

void run(Input input) {
  Machine machine;
  machine.line.answer = [](const std::string& command) {
    // Never a wait, and an end of every journal.
    return std::string(
               "\x02"
               "00/00/00/3/1/2/3/4/5/6/7/8/9/10/11/12/13/14/15/16/17/18/19/") +
           (command.starts_with("Q/") ? "" : "20/") + "\x03";
  };
  const std::vector<ObjectPtr> objects = everyObject(machine.connected(false));
  for (int calls = 0; calls < 16 && !input.atEnd(); ++calls) {
    Object& object = *objects[input.byte() % objects.size()];
    const auto& members = object.classInfo().members();
    const Member& member = members[input.byte() % members.size()];
    const unsigned how = input.byte();
    Caller caller(objects);
    std::vector<Argument> arguments;
    const std::size_t extra = (how >> 2U) % 4;
    for (std::size_t i = 0; i < member.parameters.size() + extra % 3; ++i) arguments.push_back(caller.argument(input));
    if (extra == 3 && !arguments.empty()) arguments.resize(how % arguments.size());
    const auto access = how % 8 == 7                     ? static_cast<Access>(how / 8 % 4)
                        : member.kind == MemberKind::put ? Access::write
                        : member.kind == MemberKind::get ? Access::read
                                                         : Access::call;
    const auto before = caller.state();
    const int sent = machine.line.frames;
    try {
      convertedTo(member.result, object.invoke(member.name, access, arguments));
    } catch (const AutomationError& error) {
      if (error.argument() < 0 && error.code() != AutomationCode::badParameterCount) continue;
      require(machine.line.frames == sent, "a call that cannot be made sends nothing");
      require(isSame(caller.state(), before), "a call that cannot be made writes nothing");
    }
  }
}

}  // namespace
}  // namespace mirvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  mirvane::fuzz::run({data, size});
  return 0;
}
