#pragma once

#include <variant>

#include "automation/argument.h"
#include "com/com.h"

namespace mirvane::com {

/// One argument of a call, between the caller's VARIANT and the member.
///
/// A reference to a variable of one of the member's own types is used in place. Any other variable is read, and the
/// member's value is written back after the call. A plain value is only read.
class VariantArgument {
 public:
  VariantArgument() = default;
  VariantArgument(const VariantArgument&) = delete;
  VariantArgument& operator=(const VariantArgument&) = delete;

  /// Reads the caller's VARIANT. Raises typeMismatch for what no member can take, such as an array. For an `output`,
  /// the content of a variable of any type does not matter.
  void read(VARIANT& given, bool output);

  /// Missing until something is read, or if the caller explicitly left it out. Refers to this object.
  const Argument& argument() const { return argument_; }

  /// Whether the member changed the value, not just its type.
  bool isChanged() const;

  /// Writes the member's value to the caller's variable, even if the member failed. What the member did not write stays
  /// exactly as the caller had it, even a date or a currency; but an output that the program has meanwhile written to
  /// is restored. With E_OUTOFMEMORY the variable is unchanged.
  HRESULT writeBack();

 private:
  bool isCallersAlready(const Value& result) const;
  void writeTyped(const Value& result) const;

  Argument argument_;
  /// Where a result goes: a variable of any type, or one of the type in `typed_->vt`.
  VARIANT* variant_ = nullptr;
  VARIANT* typed_ = nullptr;
  Value before_;
  /// Whether the variable holds a type that no member returns, such as a date or a currency.
  bool isForeign_ = false;
  bool isOutput_ = false;
  std::variant<bool, double, Text, ObjectPtr, Value> copy_;
};

/// A VARIANT that is cleared on destruction.
class Variant : public VARIANT {
 public:
  Variant() : VARIANT() { VariantInit(this); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  ~Variant() { VariantClear(this); }
};

/// The content of a VARIANT that is not a reference. Raises typeMismatch if it cannot be a Value, such as an array.
Value valueOf(const VARIANT& given);

/// The same, but returns `otherwise` if it cannot be a Value.
Value valueOr(const VARIANT& given, const Value& otherwise);

/// Stores a value in an empty VARIANT. Raises bad_alloc.
void toVariant(const Value& value, VARIANT& result);

/// Creates a BSTR; raises bad_alloc.
BSTR toBstr(TextView text);
Text textOf(BSTR text);

}  // namespace mirvane::com
