#pragma once

#include <array>
#include <concepts>
#include <functional>
#include <initializer_list>
#include <string_view>
#include <tuple>
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

/// A parameter as a member table writes it: its name, or optional(name[, default]). Its type is deduced.
struct ParameterName {
  using Default = std::variant<std::monostate, bool, std::int16_t>;

  constexpr ParameterName(const char* parameterName, bool mayBeOmitted = false, Default standsFor = {})
      : name(parameterName), isOptional(mayBeOmitted), defaultValue(standsFor) {}

  std::string_view name;
  bool isOptional;
  /// What an omitted argument stands for, where that is not just the type's own zero.
  Default defaultValue;
  bool isOutput = false;
  TypeKind receives = TypeKind::none;
};

/// A list of them that stands elsewhere: braces in a call, or an array.
class ParameterNames {
 public:
  /// Not to be kept: the list ends with the call.
  constexpr ParameterNames(std::initializer_list<ParameterName> list) {
    begin_ = list.begin();
    end_ = list.end();
  }
  template <std::size_t N>
  constexpr ParameterNames(const std::array<ParameterName, N>& list) : begin_(list.data()), end_(list.data() + N) {}

  const ParameterName* begin() const { return begin_; }
  const ParameterName* end() const { return end_; }

 private:
  const ParameterName* begin_ = nullptr;
  const ParameterName* end_ = nullptr;
};

constexpr ParameterName optional(const char* name, ParameterName::Default defaultValue = {}) {
  return {name, true, defaultValue};
}

/// A parameter by reference that only takes a result: what the caller's variable held before does not matter.
/// `receives` is the type of the result where the parameter's own is any.
constexpr ParameterName output(const char* name, TypeKind receives = TypeKind::none) {
  ParameterName parameter(name);
  parameter.isOutput = true;
  parameter.receives = receives;
  return parameter;
}

/// The same of a whole list.
template <std::size_t N>
constexpr std::array<ParameterName, N> outputs(std::array<ParameterName, N> names) {
  for (ParameterName& name : names) name.isOutput = true;
  return names;
}

/// One parameter of a member.
struct Parameter {
  std::string_view name;
  bool isOptional = false;
  Value defaultValue;
  Type type{};
  bool byReference = false;
  /// See output().
  bool isOutput = false;
  TypeKind receives = TypeKind::none;
};

using Parameters = std::vector<Parameter>;

/// The parameters of a list, or of several that follow one another, their types still to be told.
Parameters parametersOf(std::initializer_list<ParameterNames> lists);

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
  /// as the caller has it, but a variable of any type takes the member's type once the member has `assigned` them all.
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
    /// The variable of an output held nothing of its type; `before` stands for that, and is written nowhere.
    bool wasUnreadable = false;

    bool isChanged() const { return copy != before; }
  };

  static void fill(Slot& slot, const Argument& given, const Parameter& parameter);
  const ObjectPtr& object(std::size_t i) const { return *std::get<ObjectPtr*>(slots_[i].variable); }

  std::vector<Slot> slots_;
  bool leavesOthers_ = false;
};

/// One row of a member table.
struct Member {
  std::string_view name;
  MemberKind kind;
  /// From 1, in table order; get and put of one property share one.
  std::int32_t dispatchId;
  Parameters parameters;
  Type result;
  std::function<Value(Object&, CallArguments&)> implementation;
  /// False for a member that leaves its variables as they are; no other does, so after it a variable of any type has
  /// the parameter's type.
  bool assigns = true;

  /// Converts the arguments, runs the member on `self`, an object of the table's class, and gives back what it wrote.
  Value invoke(Object& self, Arguments given) const;
};

namespace detail {

template <class T>
concept ObjectClass = std::derived_from<T, Object>;

template <class T>
struct TypeOf;

template <>
struct TypeOf<void> {
  static constexpr Type value{TypeKind::none};
};
template <>
struct TypeOf<bool> {
  static constexpr Type value{TypeKind::boolean};
};
template <>
struct TypeOf<std::uint8_t> {
  static constexpr Type value{TypeKind::byte};
};
template <>
struct TypeOf<std::int16_t> {
  static constexpr Type value{TypeKind::integer16};
};
template <>
struct TypeOf<std::int32_t> {
  static constexpr Type value{TypeKind::integer32};
};
template <>
struct TypeOf<double> {
  static constexpr Type value{TypeKind::real};
};
template <>
struct TypeOf<Text> {
  static constexpr Type value{TypeKind::text};
};
template <>
struct TypeOf<Value> {
  static constexpr Type value{TypeKind::variant};
};
template <>
struct TypeOf<ObjectPtr> {
  static constexpr Type value{TypeKind::object};
};
template <ObjectClass T>
struct TypeOf<T> {
  static constexpr Type value{TypeKind::object, T::kName};
};
template <ObjectClass T>
struct TypeOf<std::shared_ptr<T>> {
  static constexpr Type value{TypeKind::object, T::kName};
};
template <Enumeration E>
struct TypeOf<E> {
  static constexpr Type value{TypeKind::enumeration, enumerationName(E{})};
};

/// Several parameters of a member that its C++ signature has as one: a structure of references, whose fields' types are
/// listed in its Types.
template <class A>
concept Compound = requires {
  typename A::Types;
};

template <class A>
struct Expanded {
  static constexpr std::size_t kWidth = 1;
  static void describe(Parameter* at) {
    at->type = TypeOf<std::remove_cvref_t<A>>::value;
    at->byReference = std::is_lvalue_reference_v<A>;
  }
  static decltype(auto) take(CallArguments& arguments, std::size_t at) { return arguments.get<A>(at); }
};

template <class... F>
struct Fields;
template <class... F>
struct Fields<std::tuple<F...>> {
  static void describe(Parameter* at) { (Expanded<F>::describe(at++), ...); }
  template <class A, std::size_t... I>
  static A take(CallArguments& arguments, std::size_t at, std::index_sequence<I...> /*fields*/) {
    return A{arguments.get<F>(at + I)...};
  }
};

template <Compound A>
struct Expanded<A> {
  static constexpr std::size_t kWidth = std::tuple_size_v<typename A::Types>;
  static void describe(Parameter* at) { Fields<typename A::Types>::describe(at); }
  static A take(CallArguments& arguments, std::size_t at) {
    return Fields<typename A::Types>::template take<A>(arguments, at, std::make_index_sequence<kWidth>());
  }
};

}  // namespace detail

/// One member of an interface that several classes offer: described once, and implemented, refused or forwarded by each
/// class's table. `Signature` is the C++ signature; a reference parameter is by reference for the caller.
template <class Signature>
struct Contract;

template <class R, class... A>
struct Contract<R(A...)> {
  std::string_view name;
  MemberKind kind;
  Parameters parameters;

  Contract(std::string_view memberName, MemberKind memberKind, Parameters memberParameters)
      : name(memberName), kind(memberKind), parameters(std::move(memberParameters)) {
    if (parameters.size() != (0 + ... + detail::Expanded<A>::kWidth)) {
      throw std::logic_error("parameter names do not match the signature");
    }
    [[maybe_unused]] Parameter* at = parameters.data();
    ((detail::Expanded<A>::describe(at), at += detail::Expanded<A>::kWidth), ...);
  }

  /// The table row whose member runs `implementation`, a member function of C or a callable that takes a C& first. One
  /// that returns nothing leaves the result Empty.
  template <class C, class F>
  Member implementedBy(F implementation) const {
    return row([implementation](Object& self, CallArguments& arguments) {
      return run(implementation, static_cast<C&>(self), arguments, std::index_sequence_for<A...>());
    });
  }

  /// The table row of a member that treats its arguments alike, whatever they are.
  Member row(std::function<Value(Object&, CallArguments&)> implementation) const {
    return Member{name, kind, 0, parameters, detail::TypeOf<R>::value, std::move(implementation)};
  }

 private:
  // Where argument `i` of the signature begins among the parameters.
  static constexpr std::size_t position(std::size_t i) {
    constexpr std::array<std::size_t, sizeof...(A) + 1> kWidths = {detail::Expanded<A>::kWidth..., 0};
    std::size_t at = 0;
    while (i > 0) at += kWidths[--i];
    return at;
  }

  template <class C, class F, std::size_t... I>
  static Value run(const F& implementation, C& self, [[maybe_unused]] CallArguments& arguments,
                   std::index_sequence<I...> /*positions*/) {
    const auto call = [&]() -> decltype(auto) {
      return std::invoke(implementation, self, detail::Expanded<A>::take(arguments, position(I))...);
    };
    if constexpr (std::is_void_v<decltype(call())>) {
      call();
      return {};
    } else if constexpr (Enumeration<R>) {
      return static_cast<std::int32_t>(call());
    } else {
      return call();
    }
  }
};

}  // namespace mirvane
