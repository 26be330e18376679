#include "automation/argument.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace mirvane {
namespace {

// The nearest value in the variable's range. A negative result becomes the largest value of an unsigned variable, so
// that a failure never reads as 0.
template <class T>
T nearest(const Value& result) {
  try {
    return convertTo<T>(result);
  } catch (const AutomationError& error) {
    if constexpr (std::is_integral_v<T> && !std::is_same_v<T, bool>) {
      if (error.code() == AutomationCode::overflow) {
        const double number = convertTo<double>(result);
        if (std::isnan(number)) return 0;
        return number < 0 && std::is_signed_v<T> ? std::numeric_limits<T>::min() : std::numeric_limits<T>::max();
      }
    }
    throw;
  }
}

}  // namespace

Value Argument::value() const {
  if (const auto* value = std::get_if<Value>(&held_)) return *value;
  if (const auto* reference = std::get_if<Reference>(&held_)) {
    return std::visit([](auto* variable) { return Value(*variable); }, *reference);
  }
  return {};
}

bool Argument::canTake(const Value& example) const {
  const auto* reference = std::get_if<Reference>(&held_);
  if (reference == nullptr || std::holds_alternative<Value*>(*reference)) return true;
  const bool objectVariable = std::holds_alternative<ObjectPtr*>(*reference);
  if (std::holds_alternative<ObjectPtr>(example) || objectVariable) {
    return objectVariable && std::holds_alternative<ObjectPtr>(example);
  }
  return !std::holds_alternative<Text>(example) || std::holds_alternative<Text*>(*reference);
}

bool Argument::store(const Value& result) const {
  const auto* reference = std::get_if<Reference>(&held_);
  if (reference == nullptr) return true;
  return std::visit(
      [&result]<class T>(T* variable) {
        try {
          *variable = nearest<T>(result);
          return true;
        } catch (const AutomationError&) {
          return false;
        }
      },
      *reference);
}

}  // namespace mirvane
