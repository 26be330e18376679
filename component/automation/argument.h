#pragma once

#include <span>
#include <utility>

#include "automation/value.h"

namespace mirvane {

/// A variable of the caller, in one of the types that a member can write in place.
using Reference = std::variant<bool*, std::uint8_t*, std::int16_t*, std::int32_t*, double*, Text*, ObjectPtr*, Value*>;

/// What a caller passes for one parameter: nothing, a value, or a variable by reference.
class Argument {
 public:
  Argument() = default;
  explicit Argument(Value value) : held_(std::move(value)) {}
  explicit Argument(Reference variable) : held_(variable) {}

  bool missing() const { return std::holds_alternative<std::monostate>(held_); }

  /// The value, or the variable's present content.
  Value value() const;

  /// The caller's variable if it has exactly the type T, otherwise null.
  template <class T>
  T* variable() const {
    const auto* reference = std::get_if<Reference>(&held_);
    auto* const* exact = reference == nullptr ? nullptr : std::get_if<T*>(reference);
    return exact == nullptr ? nullptr : *exact;
  }

  /// Whether a result like `example` could be stored. False only for a variable whose type can never hold it, such as a
  /// number for a text. A plain value takes anything, because its output is dropped.
  bool canTake(const Value& example) const;

  /// Whether this is a variable of any type, which takes the type of what is stored.
  bool isVariant() const { return variable<Value>() != nullptr; }

  /// Writes a result to the variable, in the variable's own type. A number outside that type's range becomes the
  /// nearest one within it, but a negative number becomes the largest one of an unsigned type. Does nothing for a plain
  /// value. Returns false if the variable cannot hold the result; it then keeps its content.
  bool store(const Value& result) const;

 private:
  std::variant<std::monostate, Value, Reference> held_;
};

using Arguments = std::span<const Argument>;

}  // namespace mirvane
