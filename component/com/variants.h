#pragma once

#include <variant>

#include "automation/argument.h"
#include "com/com.h"

namespace mirvane::com {

/// One argument of a call, between the caller's VARIANT and the member.
///
/// A reference to a variable of one of the member's own types is used in place. Any other variable is read, and what
/// the member made of it is written back after the call. A plain value is only read.
class VariantArgument {
 public:
  VariantArgument() = default;
  VariantArgument(const VariantArgument&) = delete;
  VariantArgument& operator=(const VariantArgument&) = delete;

  /// Takes the caller's VARIANT. Raises typeMismatch for what no member can take, such as an array; but what a variable
  /// of any type holds does not matter where it is for an `output`.
  void read(VARIANT& given, bool output);

  /// Missing as long as nothing was read, and when the caller left it out expressly. Refers to this object.
  const Argument& argument() const { return argument_; }

  /// Whether the member changed the value, and not its type alone.
  bool isChanged() const;

  /// Gives the caller what the member wrote, also when the member failed. What the member did not write to stays
  /// exactly what the caller had, be it a date or a currency; but an output that the program has written to meanwhile
  /// becomes what it was. E_OUTOFMEMORY leaves the caller's variable as it was.
  HRESULT writeBack();

 private:
  bool isCallersAlready(const Value& result) const;
  void writeTyped(const Value& result) const;

  Argument argument_;
  /// Where a result goes: a variable of any type, or one of the type that `typed_->vt` tells.
  VARIANT* variant_ = nullptr;
  VARIANT* typed_ = nullptr;
  Value before_;
  /// Whether the variable holds what no member gives, such as a date or a currency.
  bool isForeign_ = false;
  bool isOutput_ = false;
  std::variant<bool, double, Text, ObjectPtr, Value> copy_;
};

/// A VARIANT of our own.
class Variant : public VARIANT {
 public:
  Variant() : VARIANT() { VariantInit(this); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  ~Variant() { VariantClear(this); }
};

/// What a VARIANT holds that refers to no variable. Raises typeMismatch for what is no Value, such as an array.
Value valueOf(const VARIANT& given);

/// The same, and `otherwise` for what is no Value.
Value valueOr(const VARIANT& given, const Value& otherwise);

/// Puts a value into a VARIANT that holds nothing. Raises bad_alloc.
void toVariant(const Value& value, VARIANT& result);

/// A text as a BSTR; raises bad_alloc.
BSTR toBstr(TextView text);
Text textOf(BSTR text);

}  // namespace mirvane::com
