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

/// A parameter's or result's type as a type library tells it. `name` is the class of an object ("" for any object) or
/// the name of an enumeration.
struct Type {
  TypeKind kind = TypeKind::none;
  std::string_view name{};
};

/// One parameter of a member. A table writes its name, or optional(name[, default]) or output(name); its type is
/// deduced.
struct Parameter {
  using Default = std::variant<std::monostate, bool, std::int16_t>;

  constexpr Parameter() = default;
  constexpr Parameter(const char* itsName) : name(itsName) {}

  std::string_view name;
  bool isOptional = false;
  /// What an omitted argument stands for, where that is not just the type's own zero.
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

/// A parameter by reference that only takes a result: what the caller's variable held before does not matter.
/// `receives` is the type of the result where the parameter's own is any.
constexpr Parameter output(const char* name, TypeKind receives = TypeKind::none) {
  Parameter parameter(name);
  parameter.isOutput = true;
  parameter.receives = receives;
  return parameter;
}

using Parameters = std::vector<Parameter>;

/// `value` in a type: what a member returns, or takes. Raises as convertTo does, and typeMismatch for an object of
/// another class.
Value convertedTo(const Type& type, const Value& value);

/// The arguments of one call, in the types of the member's parameters. A parameter by reference is the caller's own
/// variable where that has the member's type, otherwise a converted copy that is written back after the call.
class CallArguments {
 public:
  /// Raises badParameterCount for a wrong number of arguments, and what conversion raises, with the argument's
  /// position. A variable that could not take its result raises typeMismatch here, before the member runs.
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

  /// All of them, each by reference, to be handed on to another member.
  std::vector<Argument> references() const;

  /// Gives the member a variable of its own for argument `i`, whose content the caller gets at the end whatever the
  /// caller's variable holds by then.
  void detach(std::size_t i);

  /// What was not detached stays as the caller has it, its type included.
  void leaveOthers() { leavesOthers_ = true; }

  /// Gives the caller what the member wrote; also to be called when the member failed. What it did not change is left
  /// as the caller has it, but once the member has `assigned` them all, a variable of any type takes the member's type,
  /// and a detached one its content; before that, a detached one gets back what it held.
  /// Of one variable that was given twice, what the member changed is written last. False when a variable could not
  /// take its result.
  bool finish(bool assigned);

 private:
  struct Slot {
    Argument given;
    Reference variable;  // the caller's own, or what `copy` holds
    Value copy;
    Value before;
    bool writeBack = false;
    /// Written whatever the variable holds.
    bool isDetached = false;
    /// What the variable of a detached one held at the beginning.
    Value held{};
    /// The variable of an output held nothing of its type; `before` stands for that, and is written nowhere.
    bool wasUnreadable = false;

    bool isChanged() const { return copy != before; }
  };

  static void fill(Slot& slot, const Argument& given, const Parameter& parameter);
  const ObjectPtr& object(std::size_t i) const { return *std::get<ObjectPtr*>(slots_[i].variable); }

  std::vector<Slot> slots_;
  bool leavesOthers_ = false;
};

/// What a member does with its arguments.
using Body = std::function<Value(Object&, CallArguments&)>;

/// One row of a member table.
struct Member {
  std::string_view name;
  MemberKind kind = MemberKind::method;
  /// From 1, without a gap; get and put of one property share one. 0 while the table is being written, for a row that
  /// gets the next one.
  std::int32_t dispatchId = 0;
  Parameters parameters;
  Type result;
  Body body;
  /// False for a member that leaves its variables as they are; no other does, so after it a variable of any type has
  /// the parameter's type.
  bool assigns = true;
  /// What it does, in Markdown, where its description has that.
  std::string_view sentence{};

  /// Converts the arguments, runs the member on `self`, an object of the table's class, and gives back what it wrote.
  Value invoke(Object& self, Arguments given) const;
};

}  // namespace mirvane
