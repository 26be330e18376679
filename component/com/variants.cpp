#include "com/variants.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "com/objects.h"

namespace mirvane::com {
namespace {

// The VARIANT type for each alternative of Value.
constexpr std::array<VARTYPE, std::variant_size_v<Value>> kTypes = {VT_EMPTY, VT_NULL, VT_BOOL, VT_UI1,      VT_I2,
                                                                    VT_I4,    VT_R8,   VT_BSTR, VT_DISPATCH, VT_DATE};

[[noreturn]] void mismatch() { throw AutomationError(AutomationCode::typeMismatch); }

void check(HRESULT outcome) {
  if (outcome == E_OUTOFMEMORY) throw std::bad_alloc();
  if (FAILED(outcome)) mismatch();
}

Value objectOf(IUnknown* pointer) {
  ObjectPtr object = unwrap(pointer);
  if (object == nullptr && pointer != nullptr) mismatch();
  return object;
}

// The nearest number in the variable's range. A negative one keeps its bits in an unsigned variable, so that a failure
// never reads as 0.
template <class T>
void storeInteger(T* variable, double number) {
  using Limits = std::numeric_limits<T>;
  const double rounded = std::nearbyint(number);
  if (std::is_unsigned_v<T> && rounded < 0) {
    *variable = static_cast<T>(static_cast<std::int64_t>(std::max(rounded, -9e18)));
  } else if (rounded >= static_cast<double>(Limits::max())) {
    *variable = Limits::max();
  } else {
    *variable = static_cast<T>(std::max(rounded, static_cast<double>(Limits::min())));
  }
}

void storeNumber(const VARIANT& variable, double number) {
  switch (variable.vt & VT_TYPEMASK) {
    case VT_I1:
      return storeInteger(reinterpret_cast<signed char*>(variable.pcVal), number);
    case VT_UI2:
      return storeInteger(variable.puiVal, number);
    case VT_UI4:
    case VT_UINT:
      return storeInteger(variable.puintVal, number);
    case VT_I8:
      return storeInteger(variable.pllVal, number);
    case VT_UI8:
      return storeInteger(variable.pullVal, number);
    case VT_R4: {
      constexpr double kLargest = std::numeric_limits<float>::max();
      *variable.pfltVal = static_cast<float>(std::clamp(number, -kLargest, kLargest));
      return;
    }
    case VT_CY: {
      constexpr double kScale = 10000;
      return storeInteger(&variable.pcyVal->int64, number * kScale);
    }
    case VT_DATE:
      *variable.pdate = number;
      return;
    case VT_DECIMAL: {
      constexpr double kLargest = 7.9e28;
      VarDecFromR8(std::clamp(number, -kLargest, kLargest), variable.pdecVal);
      return;
    }
    default:
      return;
  }
}

// A reference to the caller's variable if a member can write it in place; nothing for any other.
std::optional<Reference> inPlace(const VARIANT& variable) {
  switch (variable.vt & VT_TYPEMASK) {
    case VT_UI1:
      return variable.pbVal;
    case VT_I2:
      return variable.piVal;
    case VT_I4:
    case VT_INT:
      return reinterpret_cast<std::int32_t*>(variable.plVal);
    case VT_R8:
      return variable.pdblVal;
    default:
      return std::nullopt;
  }
}

void replaceObject(IUnknown** variable, const ObjectPtr& object) {
  ComPtr<IUnknown> before(std::exchange(*variable, object == nullptr ? nullptr : wrap(object).release()));
}

}  // namespace

BSTR toBstr(TextView text) {
  BSTR copy = SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()), static_cast<UINT>(text.size()));
  if (copy == nullptr) throw std::bad_alloc();
  return copy;
}

Text textOf(BSTR text) { return {reinterpret_cast<const char16_t*>(text), SysStringLen(text)}; }

Value valueOf(const VARIANT& given) {
  switch (given.vt) {
    case VT_EMPTY:
      return {};
    case VT_NULL:
      return Null();
    case VT_BOOL:
      return given.boolVal != VARIANT_FALSE;
    case VT_UI1:
      return std::uint8_t{given.bVal};
    case VT_I2:
      return std::int16_t{given.iVal};
    case VT_I4:
    case VT_INT:
      return static_cast<std::int32_t>(given.lVal);
    case VT_R8:
      return given.dblVal;
    case VT_BSTR:
      return textOf(given.bstrVal);
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return objectOf(given.punkVal);
    case VT_I1:
    case VT_UI2:
    case VT_UI4:
    case VT_UINT:
    case VT_I8:
    case VT_UI8:
    case VT_R4:
    case VT_CY:
    case VT_DECIMAL: {
      Variant number;
      VARIANT source = given;
      check(VariantChangeType(&number, &source, 0, VT_R8));
      return number.dblVal;
    }
    case VT_DATE: {
      Variant text;
      VARIANT source = given;
      check(VariantChangeType(&text, &source, 0, VT_BSTR));
      return Date{given.date, textOf(text.bstrVal)};
    }
    default:
      mismatch();
  }
}

Value valueOr(const VARIANT& given, const Value& otherwise) {
  try {
    return valueOf(given);
  } catch (const AutomationError&) {
    return otherwise;
  }
}

void toVariant(const Value& value, VARIANT& result) {
  std::visit(
      [&result]<class T>(const T& held) {
        if constexpr (std::is_same_v<T, bool>) {
          result.boolVal = held ? VARIANT_TRUE : VARIANT_FALSE;
        } else if constexpr (std::is_same_v<T, std::uint8_t>) {
          result.bVal = held;
        } else if constexpr (std::is_same_v<T, std::int16_t>) {
          result.iVal = held;
        } else if constexpr (std::is_same_v<T, std::int32_t>) {
          result.lVal = held;
        } else if constexpr (std::is_same_v<T, double>) {
          result.dblVal = held;
        } else if constexpr (std::is_same_v<T, Text>) {
          result.bstrVal = toBstr(held);
        } else if constexpr (std::is_same_v<T, ObjectPtr>) {
          result.pdispVal = held == nullptr ? nullptr : wrap(held).release();
        } else if constexpr (std::is_same_v<T, Date>) {
          result.date = held.days;
        }
      },
      value);
  result.vt = kTypes[value.index()];
}

void VariantArgument::read(VARIANT& given, bool output) {
  isOutput_ = output;
  // A script's variable can itself refer to a variable of an outer procedure, and so on.
  constexpr int kMostReferences = 16;
  VARIANT* source = &given;
  for (int i = 0; source->vt == (VT_BYREF | VT_VARIANT); ++i) {
    if (source->pvarVal == nullptr || i == kMostReferences) mismatch();
    source = variant_ = source->pvarVal;
  }
  if (source->vt == VT_ERROR && source->scode == DISP_E_PARAMNOTFOUND) return;
  if ((source->vt & VT_BYREF) == 0) {
    isForeign_ = source->vt == VT_DATE || std::ranges::find(kTypes, source->vt) == kTypes.end();
    before_ = output && variant_ != nullptr ? valueOr(*source, {}) : valueOf(*source);
    argument_ = variant_ == nullptr ? Argument(before_) : Argument(Reference(&copy_.emplace<Value>(before_)));
    return;
  }

  variant_ = nullptr;
  if (source->byref == nullptr || (source->vt & VT_ARRAY) != 0) mismatch();
  if (const auto reference = inPlace(*source)) {
    argument_ = Argument(*reference);
    return;
  }
  Variant held;
  check(VariantCopyInd(&held, source));
  before_ = valueOf(held);
  typed_ = source;
  switch (held.vt) {
    case VT_BOOL:
      argument_ = Argument(Reference(&copy_.emplace<bool>(convertTo<bool>(before_))));
      break;
    case VT_BSTR:
      argument_ = Argument(Reference(&copy_.emplace<Text>(convertTo<Text>(before_))));
      break;
    case VT_DISPATCH:
    case VT_UNKNOWN:
      argument_ = Argument(Reference(&copy_.emplace<ObjectPtr>(convertTo<ObjectPtr>(before_))));
      break;
    default:
      before_ = convertTo<double>(before_);
      argument_ = Argument(Reference(&copy_.emplace<double>(std::get<double>(before_))));
      break;
  }
}

bool VariantArgument::isChanged() const {
  if (argument_.missing()) return false;
  return std::visit(
      [this]<class T>(const T& held) {
        if constexpr (std::is_same_v<T, std::monostate> || std::is_same_v<T, Null> || std::is_same_v<T, Date>) {
          return Value(held) != before_;
        } else {
          try {
            return convertTo<T>(before_) != held;
          } catch (const AutomationError&) {
            return true;
          }
        }
      },
      argument_.value());
}

HRESULT VariantArgument::writeBack() {
  return guarded([&]() -> HRESULT {
    if (argument_.missing()) return S_OK;
    const Value result = argument_.value();
    if (isCallersAlready(result)) return S_OK;
    if (variant_ != nullptr) {
      Variant written;
      toVariant(result, written);
      std::swap(static_cast<VARIANT&>(written), *variant_);
    } else if (typed_ != nullptr) {
      writeTyped(result);
    }
    return S_OK;
  });
}

bool VariantArgument::isCallersAlready(const Value& result) const {
  if (result != before_ && (!isForeign_ || isChanged())) return false;
  if (!isOutput_) return true;
  if (variant_ != nullptr) return valueOr(*variant_, {}) == before_;
  if (typed_ == nullptr) return true;
  Variant now;
  check(VariantCopyInd(&now, typed_));
  const Value held = valueOr(now, {});
  return std::holds_alternative<double>(result) ? convertTo<double>(held) == std::get<double>(result) : held == result;
}

void VariantArgument::writeTyped(const Value& result) const {
  if (const auto* text = std::get_if<Text>(&result)) {
    SysFreeString(std::exchange(*typed_->pbstrVal, toBstr(*text)));
  } else if (const auto* flag = std::get_if<bool>(&result)) {
    *typed_->pboolVal = *flag ? VARIANT_TRUE : VARIANT_FALSE;
  } else if (const auto* number = std::get_if<double>(&result)) {
    storeNumber(*typed_, *number);
  } else {
    replaceObject(typed_->ppunkVal, std::get<ObjectPtr>(result));
  }
}

}  // namespace mirvane::com
