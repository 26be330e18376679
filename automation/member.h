#pragma once

#include <concepts>
#include <functional>
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

/// One parameter of a member. Written as its name, or as optional(name[, default]); the type is deduced.
struct Parameter {
  Parameter(const char* parameterName) : name(parameterName) {}  // NOLINT(google-explicit-constructor): reads as a list

  std::string_view name;
  Type type{};
  bool byReference = false;
  bool isOptional = false;
  /// What an omitted argument stands for; Empty where only the type's own zero is meant.
  Value defaultValue{};
};

using Parameters = std::vector<Parameter>;

inline Parameter optional(const char* name, Value defaultValue = {}) {
  Parameter parameter(name);
  parameter.isOptional = true;
  parameter.defaultValue = std::move(defaultValue);
  return parameter;
}

/// One row of a member table.
struct Member {
  std::string_view name;
  MemberKind kind;
  /// From 1, in table order; get and put of one property share one.
  std::int32_t dispatchId;
  Parameters parameters;
  Type result;
  std::function<Value(Object&, Arguments, const Parameters&)> implementation;

  /// Converts the arguments and runs the member on `self`, an object of the table's class.
  Value invoke(Object& self, Arguments arguments) const { return implementation(self, arguments, parameters); }
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

template <ObjectClass T>
std::shared_ptr<T> asClass(const Value& value) {
  const ObjectPtr object = convertTo<ObjectPtr>(value);
  auto exact = std::dynamic_pointer_cast<T>(object);
  if (object != nullptr && exact == nullptr) throw AutomationError(AutomationCode::typeMismatch);
  return exact;
}

inline Value valueFor(const Argument& argument, const Parameter& parameter) {
  return argument.missing() ? parameter.defaultValue : argument.value();
}

// A parameter by value.
template <class T>
class Slot {
 public:
  Slot(const Argument& argument, const Parameter& parameter) : value_(convertTo<T>(valueFor(argument, parameter))) {}
  T& get() { return value_; }
  bool finish(bool /*completed*/) const { return true; }

 private:
  T value_;
};

template <ObjectClass T>
class Slot<std::shared_ptr<T>> {
 public:
  Slot(const Argument& argument, const Parameter& parameter) : value_(asClass<T>(valueFor(argument, parameter))) {}
  std::shared_ptr<T>& get() { return value_; }
  bool finish(bool /*completed*/) const { return true; }

 private:
  std::shared_ptr<T> value_;
};

// A parameter by reference: the caller's own variable where it has the member's type, otherwise a converted copy that
// is written back after the call.
template <class T>
class Slot<T&> {
 public:
  Slot(const Argument& argument, const Parameter& parameter) : argument_(argument), variable_(argument.variable<T>()) {
    if (variable_ != nullptr) return;
    copy_ = convertTo<T>(valueFor(argument, parameter));
    if (!argument.canTake(Value(copy_))) throw AutomationError(AutomationCode::typeMismatch);
  }
  T& get() { return variable_ != nullptr ? *variable_ : copy_; }
  // False when the variable cannot take the result. What the member did not change is left as the caller has it, but a
  // variable of any type takes the member's type once the member has run to its end.
  bool finish(bool completed) const {
    if (variable_ != nullptr) return true;
    const bool typeChanges = completed && argument_.isVariant();
    return (!typeChanges && convertTo<T>(argument_.value()) == copy_) || argument_.store(Value(copy_));
  }

 private:
  const Argument& argument_;
  T* variable_;
  T copy_{};
};

// A record: filled in place, never replaced.
template <ObjectClass T>
class Slot<T&> {
 public:
  Slot(const Argument& argument, const Parameter& parameter) : record_(asClass<T>(valueFor(argument, parameter))) {
    if (record_ == nullptr) throw AutomationError(AutomationCode::typeMismatch);
  }
  T& get() { return *record_; }
  bool finish(bool /*completed*/) const { return true; }

 private:
  std::shared_ptr<T> record_;
};

template <class T>
Slot<T> makeSlot(Arguments arguments, const Parameters& parameters, std::size_t i) {
  static const Argument kMissing;
  try {
    return Slot<T>(i < arguments.size() ? arguments[i] : kMissing, parameters[i]);
  } catch (const AutomationError& error) {
    throw AutomationError(error.code(), static_cast<int>(i));
  }
}

void checkCount(Arguments arguments, const Parameters& parameters);

template <class R>
Value toValue(R&& result) {
  using Plain = std::remove_cvref_t<R>;
  if constexpr (Enumeration<Plain>) {
    return Value(static_cast<std::int32_t>(result));
  } else {
    return Value(std::forward<R>(result));
  }
}

template <class C, class R, class... A, std::size_t... I>
Value invokeWith(const auto& implementation, C& self, Arguments arguments, const Parameters& parameters,
                 std::index_sequence<I...> /*positions*/) {
  checkCount(arguments, parameters);
  // Braces: converted in order, so that the first offending argument is the one reported.
  std::tuple<Slot<A>...> slots{makeSlot<A>(arguments, parameters, I)...};
  const auto finish = [&slots]([[maybe_unused]] bool completed) {
    return (static_cast<int>(std::get<I>(slots).finish(completed)) & ... & 1) != 0;
  };
  Value result;
  try {
    if constexpr (std::is_void_v<R>) {
      std::invoke(implementation, self, std::get<I>(slots).get()...);
    } else {
      result = toValue(std::invoke(implementation, self, std::get<I>(slots).get()...));
    }
  } catch (...) {
    finish(false);  // what was written before the failure belongs to the caller
    throw;
  }
  if (!finish(true)) throw AutomationError(AutomationCode::typeMismatch);
  return result;
}

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
    if (parameters.size() != sizeof...(A)) throw std::logic_error("parameter names do not match the signature");
    std::size_t i = 0;
    ((parameters[i].type = detail::TypeOf<std::remove_cvref_t<A>>::value,
      parameters[i].byReference = std::is_lvalue_reference_v<A>, ++i),
     ...);
  }

  /// The table row whose member runs `implementation`, a member function of C or a callable that takes a C& first.
  template <class C, class F>
  Member implementedBy(F implementation) const {
    return Member{name,
                  kind,
                  0,
                  parameters,
                  detail::TypeOf<R>::value,
                  [implementation](Object& self, Arguments arguments, const Parameters& rows) {
                    return detail::invokeWith<C, R, A...>(implementation, static_cast<C&>(self), arguments, rows,
                                                          std::index_sequence_for<A...>());
                  }};
  }
};

}  // namespace mirvane
