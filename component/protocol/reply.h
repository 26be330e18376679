#pragma once

#include <vector>

#include "automation/value.h"
#include "protocol/device_codes.h"
#include "text/number_text.h"
#include "text/numbers.h"

namespace mirvane {

/// Whether a reply begins with its result and both status bytes, "HH/HH/HH". One that does not tells nothing.
bool hasStatus(TextView reply);

/// What came of one command: the device's reply, or why there is none.
class Reply {
 public:
  /// Success of which nothing is told.
  Reply() = default;
  /// The device's reply, without the control bytes of the link.
  explicit Reply(Text raw);
  /// A failure of the component's own, or what another driver made of a reply.
  Reply(std::int16_t code, TextView text, Text raw = {}) : result(code), message(text) { setRaw(std::move(raw)); }

  bool is(DeviceCode code) const { return result == static_cast<std::int16_t>(code); }
  bool succeeded() const { return result == 0; }

  /// 0 success; greater than 0 the device's code; less than 0 a link_result.
  std::int16_t result = 0;
  /// What Exresult becomes: the reply as it is, or the meaning of its code or of a condition of the printer.
  Text message;

  /// As it came, without control bytes; empty when there is none.
  const Text& raw() const { return raw_; }

  /// State of the device, from the status bytes.
  struct Flags {
    bool dayOpen = false, transactionOpen = false, inPayment = false, flashNearFull = false;
  };
  const Flags& flags() const { return flags_; }

  // The fields behind the status bytes, from 0. They are always the reply's own, whatever `message` says of a printer
  // without paper. Reading past the last one raises badIndex: the values taken before it stand.

  /// How many fields are closed by "/"; and how many there are with what stands behind the last "/".
  std::size_t count() const { return fields_.empty() ? 0 : fields_.size() - 1; }
  std::size_t countAll() const { return fields_.size(); }
  const Text& text(std::size_t i) const { return i < count() ? fields_[i] : textAt(fields_.size()); }
  /// As `text`, and what stands behind the last "/" counts as a field too.
  const Text& textAt(std::size_t i) const {
    if (i >= fields_.size()) throw AutomationError(AutomationCode::badIndex);
    return fields_[i];
  }
  /// The number at the field's start, 0 when there is none.
  double number(std::size_t i) const { return leadingNumber(text(i)); }
  /// The same as a whole number; raises overflow when it is beyond the type.
  template <class Integer>
  Integer integer(std::size_t i) const {
    return convertTo<Integer>(Value(number(i)));
  }
  /// A whole number from a numeric field, 0 from any other.
  std::int16_t size(std::size_t i) const { return toInt(text(i)); }

 private:
  void setRaw(Text raw);

  Text raw_;
  Flags flags_;
  std::vector<Text> fields_;
};

}  // namespace mirvane
