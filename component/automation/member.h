#pragma once

#include <array>
#include <concepts>
#include <functional>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "automation/argument.h"

namespace mirvane {

enum class MemberKind { method, get, put };

enum class TypeKind { none, boolean, byte, integer16, integer32, real, text, variant, object, enumeration };

/// The type of a parameter or result, as in a type library. `name` is the class of an object ("" for any object) or the
/// name of an enumeration.
struct Type {
  TypeKind kind = TypeKind::none;
  std::string_view name{};
};

/// One parameter of a member. A table gives its name, or optional(name[, default]) or output(name); the type is
/// deduced.
struct Parameter {
  using Default = std::variant<std::monostate, bool, std::int16_t>;

  constexpr Parameter() = default;
  constexpr Parameter(const char* itsName) : name(itsName) {}

  std::string_view name;
  bool isOptional = false;
  /// The value of an omitted argument, if it is not the type's zero.
  Default preset;
  /// See output().
  bool isOutput = false;
  TypeKind receives = TypeKind::none;

  Type type{};
  bool byReference = false;

  Value presetValue() const {
    return std::visit([](auto value) { return Value(value); }, preset);
  }
};

constexpr Parameter optional(const char* name, Parameter::Default preset = {}) {
  Parameter parameter(name);
  parameter.isOptional = true;
  parameter.preset = preset;
  return parameter;
}

/// A parameter by reference that only receives a result: the previous content of the caller's variable does not matter.
/// `receives` is the type of the result if the parameter's own is any.
constexpr Parameter output(const char* name, TypeKind receives = TypeKind::none) {
  Parameter parameter(name);
  parameter.isOutput = true;
  parameter.receives = receives;
  return parameter;
}

using Parameters = std::vector<Parameter>;

/// Converts `value` to the type of a parameter or result. Raises what convertTo raises, and typeMismatch for an object
/// of another class.
Value convertedTo(const Type& type, const Value& value);

/// The arguments of one call, in the types of the member's parameters. A parameter by reference is the caller's own
/// variable if that has the member's type, otherwise a converted copy that is written back after the call.
class CallArguments {
 public:
  /// Raises badParameterCount for a wrong number of arguments, and what conversion raises, with the argument's
  /// position. A variable that cannot take its result raises typeMismatch here, before the member runs.
  CallArguments(Arguments given, const Parameters& parameters);
  CallArguments(const CallArguments&) = delete;
  CallArguments& operator=(const CallArguments&) = delete;

  /// Argument `i` as the member's parameter type A: a T&, a T, a record's class& or a shared_ptr to a class. Raises
  /// typeMismatch for a record that is Nothing, which a member can neither read nor fill.
  template <class A>
  decltype(auto) get(std::size_t i) {
    using T = std::remove_reference_t<A>;
    if constexpr (std::derived_from<T, Object>) {
      if (object(i) == nullptr) throw AutomationError(AutomationCode::typeMismatch, static_cast<int>(i));
      return static_cast<T&>(*object(i));
    } else if constexpr (requires { typename T::element_type; }) {
      return std::static_pointer_cast<typename T::element_type>(object(i));
    } else {
      return (*std::get<T*>(slots_[i].variable));
    }
  }

  /// All arguments by reference, to pass on to another member.
  std::vector<Argument> references() const;

  /// Gives the member its own variable for argument `i`. Its content is written to the caller's variable at the end,
  /// whatever that holds by then.
  void detach(std::size_t i);

  /// Leaves all arguments that were not detached as the caller has them, including their types.
  void leaveOthers() { leavesOthers_ = true; }

  /// Writes the member's results to the caller's variables; call it even if the member failed. What the member did not
  /// change stays as it is. If the member has `assigned` all of them, a variable of any type takes the member's type
  /// and a detached variable its new content; otherwise a detached variable gets its old content back. If one variable
  /// was given twice, a changed value is written last. Returns false if a variable could not take its result.
  bool finish(bool assigned);

 private:
  struct Slot {
    Argument given;
    Reference variable;  // the caller's own variable, or the content of `copy`
    Value copy;
    Value before;
    bool writeBack = false;
    /// Written whatever the variable holds.
    bool isDetached = false;
    /// What the variable of a detached argument held at the start of the call.
    Value held{};
    /// An output's variable held nothing of its type; `before` stands in for that and is never written back.
    bool wasUnreadable = false;

    bool isChanged() const { return copy != before; }
  };

  static void fill(Slot& slot, const Argument& given, const Parameter& parameter);
  const ObjectPtr& object(std::size_t i) const { return *std::get<ObjectPtr*>(slots_[i].variable); }

  std::vector<Slot> slots_;
  bool leavesOthers_ = false;
};

/// Runs a member with its arguments.
using Body = std::function<Value(Object&, CallArguments&)>;

/// One row of a member table.
struct Member {
  std::string_view name;
  MemberKind kind = MemberKind::method;
  /// From 1, without gaps; get and put of a property share one. 0 in a table under construction: such a row gets the
  /// next id.
  std::int32_t dispatchId = 0;
  Parameters parameters;
  Type result;
  Body body;
  /// False for the one member that leaves its variables as they are. After every other member a variable of any type
  /// has the parameter's type.
  bool assigns = true;
  /// What the member does, in Markdown; empty if its description has no such text.
  std::string_view sentence{};

  /// Converts the arguments, runs the member on `self`, an object of the table's class, and writes the results back.
  Value invoke(Object& self, Arguments given) const;
};

}  // namespace mirvane
