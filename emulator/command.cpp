#include "emulator/command.h"

namespace mirvane::emulator {
namespace {

// 9999999.99 as an amount, 999999.999 as a quantity; the product of two such numbers still fits.
constexpr std::int64_t kGreatestField = 999'999'999;

}  // namespace

Fields::Fields(std::string_view command) : code_(command.substr(0, command.find('/'))) {
  for (std::size_t slash = code_.size(); slash < command.size();) {
    const std::size_t next = std::min(command.find('/', slash + 1), command.size());
    pieces_.push_back(command.substr(slash + 1, next - slash - 1));
    slash = next;
  }
}

Code Fields::check(const std::vector<FieldRule>& rules, bool endsOpen) {
  if (!endsOpen) {
    if (!pieces_.back().empty()) return Code::kFieldCount;
    pieces_.pop_back();
  }
  if (pieces_.size() != rules.size()) return Code::kFieldCount;
  for (std::size_t i = 0; i < rules.size(); ++i) {
    if (pieces_[i].size() > rules[i].longest) return Code::kFieldTooLong;
    if (pieces_[i].empty() && !rules[i].mayBeEmpty) return Code::kFieldTooShort;
  }
  numbers_.assign(rules.size(), 0);
  for (std::size_t i = 0; i < rules.size(); ++i) {
    const FieldRule::Kind kind = rules[i].kind;
    if (kind == FieldRule::Kind::kText || pieces_[i].empty()) continue;
    const int decimals = kind == FieldRule::Kind::kAmount ? 2 : kind == FieldRule::Kind::kQuantity ? 3 : 0;
    const auto number = parseFixed(pieces_[i], decimals);
    if (!number || *number > kGreatestField || *number < -kGreatestField) return Code::kFieldRange;
    if (kind == FieldRule::Kind::kFlag && *number != 0 && *number != 1) return Code::kFieldRange;
    numbers_[i] = *number;
  }
  return Code::kOk;
}

bool isBlank(TextView text) { return text.find_first_not_of(u' ') == TextView::npos; }

const CommandRow* findCommand(const Fields& fields, Code& code) {
  code = Code::kUnknownRequest;
  for (const auto* table : {&receiptCommands(), &printerCommands(), &readCommands(), &configCommands(),
                            &reportCommands(), &cardCommands()}) {
    for (const CommandRow& command : *table) {
      if (command.code != fields.code()) continue;
      if (command.selector.empty() || fields.bytes(0) == command.selector) return &command;
      code = Code::kFieldRange;
    }
  }
  return nullptr;
}

}  // namespace mirvane::emulator
