#include "automation/member.h"

#include <limits>
#include <type_traits>

#include "automation/root.h"

namespace mirvane {
namespace {

// Calls `f` with the C++ type of such a parameter, as a std::type_identity.
template <class F>
auto withType(TypeKind kind, F f) {
  switch (kind) {
    case TypeKind::boolean:
      return f(std::type_identity<bool>());
    case TypeKind::byte:
      return f(std::type_identity<std::uint8_t>());
    case TypeKind::integer16:
      return f(std::type_identity<std::int16_t>());
    case TypeKind::integer32:
    case TypeKind::enumeration:
      return f(std::type_identity<std::int32_t>());
    case TypeKind::real:
      return f(std::type_identity<double>());
    case TypeKind::text:
      return f(std::type_identity<Text>());
    case TypeKind::object:
      return f(std::type_identity<ObjectPtr>());
    case TypeKind::none:
    case TypeKind::variant:
      break;
  }
  return f(std::type_identity<Value>());
}

// A reference to a copy's content, in its own type.
Reference inside(Value& copy, TypeKind kind) {
  return withType(kind, [&copy]<class T>(std::type_identity<T>) -> Reference {
    if constexpr (std::is_same_v<T, Value>) {
      return &copy;
    } else {
      return &std::get<T>(copy);
    }
  });
}

// The value of an object's default member.
Value defaultOf(const ObjectPtr& object) {
  try {
    return object == nullptr ? object : object->invoke(Object::kDefaultMember, Access::callOrRead, {});
  } catch (const AutomationError& error) {
    if (error.code() == AutomationCode::memberNotFound) throw AutomationError(AutomationCode::typeMismatch);
    throw;
  }
}

// A value that no member returns.
Value nothingOf(TypeKind kind) {
  return withType(kind, []<class T>(std::type_identity<T>) -> Value {
    if constexpr (std::is_same_v<T, Text>) {
      return Text(1, u'\uFFFF');
    } else if constexpr (std::is_same_v<T, std::uint8_t>) {
      return std::numeric_limits<T>::max();
    } else if constexpr (std::is_arithmetic_v<T>) {
      return std::numeric_limits<T>::lowest();
    } else {
      return T();
    }
  });
}

// A result of this type, to test whether a variable can take it.
Value exampleOf(TypeKind kind) { return convertedTo(Type{kind}, {}); }

void requireCount(Arguments given, const Parameters& parameters) {
  bool complete = given.size() <= parameters.size();
  for (std::size_t i = 0; complete && i < parameters.size(); ++i) {
    complete = parameters[i].isOptional || (i < given.size() && !given[i].missing());
  }
  if (!complete) throw AutomationError(AutomationCode::badParameterCount);
}

}  // namespace

Value convertedTo(const Type& type, const Value& value) {
  if (type.kind == TypeKind::none) return {};
  Value converted =
      withType(type.kind, [&value]<class T>(std::type_identity<T>) -> Value { return convertTo<T>(value); });
  if (type.kind == TypeKind::object && !type.name.empty()) {
    const auto& object = std::get<ObjectPtr>(converted);
    if (object != nullptr && object->className() != type.name) {
      throw AutomationError(AutomationCode::typeMismatch);
    }
  }
  return converted;
}

CallArguments::CallArguments(Arguments given, const Parameters& parameters) {
  requireCount(given, parameters);
  slots_.resize(parameters.size());
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    try {
      fill(slots_[i], i < given.size() ? given[i] : Argument(), parameters[i]);
    } catch (const AutomationError& error) {
      throw AutomationError(error.code(), static_cast<int>(i));
    }
  }
}

void CallArguments::fill(Slot& slot, const Argument& given, const Parameter& parameter) {
  const TypeKind kind = parameter.type.kind;
  const bool isRecord = kind == TypeKind::object;
  slot.given = given;
  slot.writeBack = false;
  if (parameter.byReference && !isRecord) {
    const bool inPlace = withType(kind, [&]<class T>(std::type_identity<T>) {
      T* const variable = given.variable<T>();
      slot.variable = variable;
      return variable != nullptr;
    });
    if (inPlace) return;
    slot.writeBack = true;
  }
  Value value = given.missing() ? parameter.presetValue() : given.value();
  const bool isObject = !isRecord && kind != TypeKind::variant && std::holds_alternative<ObjectPtr>(value);
  if (isObject && !parameter.isOutput) {
    value = defaultOf(std::get<ObjectPtr>(value));
    slot.given = Argument(value);  // the variable keeps its object
  }
  try {
    slot.copy = convertedTo(parameter.type, value);
  } catch (const AutomationError&) {
    if (!parameter.isOutput) throw;
    slot.copy = nothingOf(kind);
    slot.wasUnreadable = true;
  }
  slot.variable = inside(slot.copy, kind);
  const Value example = parameter.receives == TypeKind::none ? slot.copy : exampleOf(parameter.receives);
  if (slot.writeBack && !slot.given.canTake(example)) throw AutomationError(AutomationCode::typeMismatch);
  if (slot.writeBack) slot.before = slot.copy;
}

void CallArguments::detach(std::size_t i) {
  Slot& slot = slots_[i];
  slot.isDetached = true;
  slot.held = slot.given.value();
  if (std::exchange(slot.writeBack, true)) return;
  slot.copy = slot.before = slot.given.value();
  slot.variable = std::visit(
      [&slot]<class T>(T* /*callers*/) -> Reference {
        if constexpr (std::is_same_v<T, Value>) {
          return &slot.copy;
        } else {
          return &std::get<T>(slot.copy);
        }
      },
      slot.variable);
}

std::vector<Argument> CallArguments::references() const {
  std::vector<Argument> all;
  all.reserve(slots_.size());
  for (const Slot& slot : slots_) all.emplace_back(slot.variable);
  return all;
}

bool CallArguments::finish(bool assigned) {
  bool taken = true;
  for (const bool changed : {false, true}) {
    for (const Slot& slot : slots_) {
      if (!slot.writeBack || slot.isChanged() != changed) continue;
      if (slot.isDetached && !changed && !assigned) {
        if (slot.given.value() != slot.held) slot.given.store(slot.held);
        continue;
      }
      if (slot.wasUnreadable && !changed) continue;
      const bool typeChanges = assigned && !leavesOthers_ && slot.given.isVariant();
      if (changed || slot.isDetached || typeChanges) taken = slot.given.store(slot.copy) && taken;
    }
  }
  return taken;
}

Value Member::invoke(Object& self, Arguments given) const {
  CallArguments arguments(given, parameters);
  Value value;
  try {
    value = body(self, arguments);
  } catch (...) {
    arguments.finish(false);  // results written before the failure are still returned
    throw;
  }
  if (!arguments.finish(assigns)) throw AutomationError(AutomationCode::typeMismatch);
  return value;
}

}  // namespace mirvane
