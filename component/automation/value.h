#pragma once

#include <cstdint>
#include <memory>
#include <type_traits>
#include <variant>

#include "automation/errors.h"
#include "text/text.h"

namespace mirvane {

class Object;
using ObjectPtr = std::shared_ptr<Object>;

struct Null {
  bool operator==(const Null&) const = default;
};

/// A date of the program: its number of days, and the text that the program's system gives it.
struct Date {
  double days;
  Text text;

  bool operator==(const Date&) const = default;
};

/// What an automation variable can hold. The first alternative is Empty; a null ObjectPtr is Nothing.
using Value =
    std::variant<std::monostate, Null, bool, std::uint8_t, std::int16_t, std::int32_t, double, Text, ObjectPtr, Date>;

/// Converts a value to the type that a member needs. Empty is 0, "" or False; True is -1 as a number; a real number
/// becomes an integer by rounding half to even; a text is a number if parseNumber accepts it; a date converts to a
/// number or a text. Raises typeMismatch if there is no such value (Null, an object, a text that is not a number), and
/// overflow for a number outside the type's range; for integers this includes infinities and NaN.
template <class T>
T convertTo(const Value& value);

template <>
bool convertTo<bool>(const Value& value);
template <>
std::uint8_t convertTo<std::uint8_t>(const Value& value);
template <>
std::int16_t convertTo<std::int16_t>(const Value& value);
template <>
std::int32_t convertTo<std::int32_t>(const Value& value);
template <>
double convertTo<double>(const Value& value);
template <>
Text convertTo<Text>(const Value& value);
template <>
ObjectPtr convertTo<ObjectPtr>(const Value& value);
template <>
Value convertTo<Value>(const Value& value);

template <class T>
concept Enumeration = std::is_enum_v<T>;

/// An enumeration is passed as its number.
template <Enumeration E>
E convertTo(const Value& value) {
  return static_cast<E>(convertTo<std::int32_t>(value));
}

}  // namespace mirvane
