#pragma once

#include <span>
#include <utility>

#include "automation/value.h"

namespace mirvane {

/// A variable of the caller's, in one of the types that a member can write to in place.
using Reference = std::variant<bool*, std::uint8_t*, std::int16_t*, std::int32_t*, double*, Text*, ObjectPtr*, Value*>;

/// What a caller hands over for one parameter: nothing, a value, or a variable by reference.
class Argument {
 public:
  Argument() = default;
  explicit Argument(Value value) : held_(std::move(value)) {}
  explicit Argument(Reference variable) : held_(variable) {}

  bool missing() const { return std::holds_alternative<std::monostate>(held_); }

  /// The value, or what the variable holds now.
  Value value() const;

  /// The caller's variable when it has exactly the type T, else null.
  template <class T>
  T* variable() const {
    const auto* reference = std::get_if<Reference>(&held_);
    auto* const* exact = reference == nullptr ? nullptr : std::get_if<T*>(reference);
    return exact == nullptr ? nullptr : *exact;
  }

  /// Whether a result like `example` could be stored. False only for a variable whose type can never take it, such as a
  /// number for a text; a plain value takes anything, since its output is dropped.
  bool canTake(const Value& example) const;

  /// Whether this is a variable of any type, which takes the type of what is stored.
  bool isVariant() const { return variable<Value>() != nullptr; }

  /// Writes a result to the variable, in the variable's own type; a number beyond that type becomes the nearest that it
  /// holds, and a negative one the largest of an unsigned type. Does nothing for a plain value. False when the variable
  /// cannot take it, and keeps what it has.
  bool store(const Value& result) const;

 private:
  std::variant<std::monostate, Value, Reference> held_;
};

using Arguments = std::span<const Argument>;

}  // namespace mirvane
