#pragma once

#include <array>
#include <string>

#include "component/component.h"
#include "state/fiscal_types.h"
#include "text/code_page.h"
#include "text/number_text.h"
#include "tools/descriptions.h"

// What the programs that describe the public classes have in common.
namespace mirvane {

struct FiscalTypeName {
  std::string_view name;
  FISCAL_TYPES value;
};

inline constexpr std::array kFiscalTypeNames = {FiscalTypeName{"FISCAL_unknown", FISCAL_unknown},
                                                FiscalTypeName{"FISCAL_PALKOFISCAL", FISCAL_PALKOFISCAL},
                                                FiscalTypeName{"FISCAL_VARLENFISCAL", FISCAL_VARLENFISCAL},
                                                FiscalTypeName{"FISCAL_VARLENFISCAL2", FISCAL_VARLENFISCAL2}};

/// A language's words for the types, in the order of TypeKind. Objects and enumerations have names of their own; the
/// word for objects stands for one of any class.
using TypeWords = std::array<std::string_view, 9>;

inline std::string typeText(const Type& type, const TypeWords& words) {
  return std::string(type.name.empty() ? words.at(static_cast<std::size_t>(type.kind)) : type.name);
}

/// What a member does, in Markdown: as its row says, or the descriptions.
inline std::string sentenceOf(const ClassInfo& info, const Member& member, Descriptions& descriptions) {
  return member.sentence.empty() ? descriptions.of(subjectOf(info.name(), member.name)) : std::string(member.sentence);
}

/// A text in quotes, or a number; True is -1.
inline std::string literal(const Value& value) {
  if (const auto* text = std::get_if<Text>(&value)) return '"' + toUtf8(*text) + '"';
  return toUtf8(numberText(convertTo<double>(value)));
}

}  // namespace mirvane
