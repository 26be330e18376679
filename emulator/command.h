#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "emulator/money.h"
#include "emulator/register.h"
#include "emulator/result_code.h"
#include "text/code_page.h"

namespace mirvane::emulator {

using Name = std::string_view;

/// What a field of a command may contain.
struct FieldRule {
  /// For the page and the HTTP interface; may be empty.
  Name name;
  enum class Kind { kText, kWhole, kFlag, kAmount, kQuantity } kind;
  std::size_t longest;
  bool mayBeEmpty;
};

namespace field {
constexpr FieldRule text(Name name, std::size_t longest) { return {name, FieldRule::Kind::kText, longest, true}; }
constexpr FieldRule whole(Name name, std::size_t longest) { return {name, FieldRule::Kind::kWhole, longest, false}; }
/// 0 or 1.
constexpr FieldRule flag(Name name) { return {name, FieldRule::Kind::kFlag, 3, false}; }
constexpr FieldRule wholeOrEmpty(Name name, std::size_t longest) {
  return {name, FieldRule::Kind::kWhole, longest, true};
}
constexpr FieldRule amount(Name name) { return {name, FieldRule::Kind::kAmount, 11, false}; }
constexpr FieldRule quantity(Name name) { return {name, FieldRule::Kind::kQuantity, 10, false}; }
/// A digit that has already selected the command.
constexpr FieldRule selector(std::size_t longest = 1) { return whole("", longest); }
constexpr FieldRule empty() { return text("", 0); }
}  // namespace field

/// The fields of a command after its code, numbered from 0. They have passed the rules of their command.
class Fields {
 public:
  /// `command` contains a "/".
  explicit Fields(std::string_view command);

  std::string_view code() const { return code_; }
  std::string_view bytes(std::size_t i) const { return pieces_[i]; }

  /// Checks count, then lengths, then types. A "/" must also close the last field, unless the command `endsOpen`.
  Code check(const std::vector<FieldRule>& rules, bool endsOpen);

  Text text(std::size_t i) const { return fromCodePage(pieces_[i]); }
  /// A whole number, cents or thousandths, depending on the field's rule; 0 for an empty field.
  std::int64_t number(std::size_t i) const { return numbers_[i]; }
  int whole(std::size_t i) const { return static_cast<int>(numbers_[i]); }
  bool flag(std::size_t i) const { return numbers_[i] != 0; }

 private:
  std::string_view code_;
  std::vector<std::string_view> pieces_;
  std::vector<std::int64_t> numbers_;
};

/// Collects the fields of a reply after its status bytes.
class ReplyWriter {
 public:
  ReplyWriter& text(std::string_view bytes) {
    bytes_.append(bytes).push_back('/');
    return *this;
  }
  ReplyWriter& text(TextView value) { return text(toCodePage(value)); }
  ReplyWriter& amount(Cents value) { return text(formatCents(value)); }
  ReplyWriter& whole(std::int64_t value) { return text(std::to_string(value)); }

  const std::string& bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

/// One command of the register.
struct CommandRow {
  std::string_view code;
  /// The first field that selects this row among those with the same code; an empty one accepts any.
  std::string_view selector;
  /// For the page and the HTTP interface.
  Name name;
  std::vector<FieldRule> fields;
  /// Refused while the printer cannot print.
  bool prints;
  Code (*run)(Register& machine, const Fields& fields, ReplyWriter& reply);
  /// Names of the reply's fields after the status bytes.
  std::vector<Name> replyNames = {};
  /// Its last field has no closing "/".
  bool endsOpen = false;
};

// The commands, by subject; each table is in the same file as its handlers.
const std::vector<CommandRow>& receiptCommands();
const std::vector<CommandRow>& printerCommands();
const std::vector<CommandRow>& readCommands();
const std::vector<CommandRow>& configCommands();
const std::vector<CommandRow>& reportCommands();
const std::vector<CommandRow>& cardCommands();

bool isBlank(TextView text);

/// The row for `fields`. If there is none, `code` says whether the command or only its selector is unknown.
const CommandRow* findCommand(const Fields& fields, Code& code);

}  // namespace mirvane::emulator
