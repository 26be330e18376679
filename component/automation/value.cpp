#include "automation/value.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "text/number_text.h"

namespace mirvane {
namespace {

[[noreturn]] void mismatch() { throw AutomationError(AutomationCode::typeMismatch); }

bool sameWord(TextView text, TextView lowerCaseWord) {
  return std::equal(text.begin(), text.end(), lowerCaseWord.begin(), lowerCaseWord.end(),
                    [](char16_t a, char16_t b) { return (a >= u'A' && a <= u'Z' ? a + (u'a' - u'A') : a) == b; });
}

double numberOf(const Value& value) {
  return std::visit(
      []<class T>(const T& held) -> double {
        if constexpr (std::is_same_v<T, std::monostate>) {
          return 0;
        } else if constexpr (std::is_same_v<T, bool>) {
          return held ? -1 : 0;
        } else if constexpr (std::is_arithmetic_v<T>) {
          return static_cast<double>(held);
        } else if constexpr (std::is_same_v<T, Text>) {
          const auto number = parseNumber(held);
          if (!number) mismatch();
          if (std::isinf(*number)) throw AutomationError(AutomationCode::overflow);
          return *number;
        } else if constexpr (std::is_same_v<T, Date>) {
          return held.days;
        } else {
          mismatch();
        }
      },
      value);
}

template <class Integer>
Integer integerOf(const Value& value) {
  const double rounded = std::nearbyint(numberOf(value));
  using Limits = std::numeric_limits<Integer>;
  if (!(rounded >= Limits::min() && rounded <= Limits::max())) throw AutomationError(AutomationCode::overflow);
  return static_cast<Integer>(rounded);
}

}  // namespace

template <>
bool convertTo<bool>(const Value& value) {
  if (const auto* text = std::get_if<Text>(&value)) {
    if (sameWord(*text, u"true")) return true;
    if (sameWord(*text, u"false")) return false;
  }
  return numberOf(value) != 0;
}

template <>
std::uint8_t convertTo<std::uint8_t>(const Value& value) {
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? 255 : 0;
  return integerOf<std::uint8_t>(value);
}

template <>
std::int16_t convertTo<std::int16_t>(const Value& value) {
  return integerOf<std::int16_t>(value);
}

template <>
std::int32_t convertTo<std::int32_t>(const Value& value) {
  return integerOf<std::int32_t>(value);
}

template <>
double convertTo<double>(const Value& value) {
  return numberOf(value);
}

template <>
Text convertTo<Text>(const Value& value) {
  return std::visit(
      []<class T>(const T& held) -> Text {
        if constexpr (std::is_same_v<T, std::monostate>) {
          return {};
        } else if constexpr (std::is_same_v<T, bool>) {
          return held ? u"True" : u"False";
        } else if constexpr (std::is_integral_v<T>) {
          return numberText(std::int32_t{held});
        } else if constexpr (std::is_same_v<T, double>) {
          return numberText(held);
        } else if constexpr (std::is_same_v<T, Text>) {
          return held;
        } else if constexpr (std::is_same_v<T, Date>) {
          return held.text;
        } else {
          mismatch();
        }
      },
      value);
}

template <>
ObjectPtr convertTo<ObjectPtr>(const Value& value) {
  if (const auto* object = std::get_if<ObjectPtr>(&value)) return *object;
  mismatch();
}

template <>
Value convertTo<Value>(const Value& value) {
  return value;
}

}  // namespace mirvane
