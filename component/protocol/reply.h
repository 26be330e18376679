#pragma once

#include <vector>

#include "automation/value.h"
#include "protocol/device_codes.h"
#include "text/number_text.h"
#include "text/numbers.h"

namespace mirvane {

/// Whether a reply begins with its result and both status bytes, "HH/HH/HH". A reply that does not says nothing.
bool hasStatus(TextView reply);

/// The outcome of one command: the register's reply, or why there is none.
class Reply {
 public:
  /// Success without a reply.
  Reply() = default;
  /// The register's reply, without the link's control bytes.
  explicit Reply(Text raw);
  /// A failure found by the component, or another driver's interpretation of a reply.
  Reply(std::int16_t code, TextView text, Text raw = {}) : result(code), message(text) { setRaw(std::move(raw)); }

  bool is(DeviceCode code) const { return result == static_cast<std::int16_t>(code); }
  bool succeeded() const { return result == 0; }

  /// 0: success. Above 0: the register's code. Below 0: a link_result.
  std::int16_t result = 0;
  /// The text for Exresult: the reply itself, or the meaning of its code or of a printer condition.
  Text message;

  /// The reply as received, without control bytes; empty if there is none.
  const Text& raw() const { return raw_; }

  /// State of the register, from the status bytes.
  struct Flags {
    bool dayOpen = false, transactionOpen = false, inPayment = false, flashNearFull = false;
  };
  const Flags& flags() const { return flags_; }

  // The fields after the status bytes, counted from 0. They always come from the reply itself, even if `message`
  // reports a printer condition. Reading past the last one raises badIndex; values read before stay.

  /// How many fields are closed by "/"; and how many there are including the text after the last "/".
  std::size_t count() const { return fields_.empty() ? 0 : fields_.size() - 1; }
  std::size_t countAll() const { return fields_.size(); }
  const Text& text(std::size_t i) const { return i < count() ? fields_[i] : textAt(fields_.size()); }
  /// As `text`, but the text after the last "/" also counts as a field.
  const Text& textAt(std::size_t i) const {
    if (i >= fields_.size()) throw AutomationError(AutomationCode::badIndex);
    return fields_[i];
  }
  /// The number at the start of the field; 0 if there is none.
  double number(std::size_t i) const { return leadingNumber(text(i)); }
  /// The same as a whole number; raises overflow if it is outside the type's range.
  template <class Integer>
  Integer integer(std::size_t i) const {
    return convertTo<Integer>(Value(number(i)));
  }
  /// A whole number from a numeric field; 0 from any other.
  std::int16_t size(std::size_t i) const { return toInt(text(i)); }

 private:
  void setRaw(Text raw);

  Text raw_;
  Flags flags_;
  std::vector<Text> fields_;
};

}  // namespace mirvane
