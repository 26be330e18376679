#include "tools/call_examples.h"

#include <array>
#include <map>

#include "interface/outcome.h"

namespace mirvane {
namespace {

/// A language: its name in Markdown, and how it writes what the examples need.
struct Dialect {
  std::string_view block;
  std::string_view end;
  std::string_view makeRecord;  // %1 is its variable, %2 its class
  std::string_view byReference;
  std::string_view openCall;
  std::string_view closeCall;
  std::string_view keepObject;  // %1 is its variable
  std::string_view keepValue;
};

constexpr Dialect kVbScript{"vb",        "",     "Set %1 = CreateObject(\"VarlenFiscalQ7734.%2\")", "", " ", "",
                            "Set %1 = ", "%1 = "};
constexpr Dialect kCSharp{"csharp", ";", "var %1 = new %2()", "ref ", "(", ")", "var %1 = ", "var %1 = "};
constexpr Dialect kPython{"python", "", "%1 = Dispatch(\"VarlenFiscalQ7734.%2\")", "", "(", ")", "%1 = ", "%1 = "};

std::string filled(std::string_view pattern, std::string_view first, std::string_view second = {}) {
  std::string text;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] == '%') {
      text += pattern[++i] == '1' ? first : second;
    } else {
      text += pattern[i];
    }
  }
  return text;
}

bool isOutcome(const Parameter& parameter) {
  return std::ranges::any_of(Outcome::kNames, [&](const Parameter& one) { return one.name == parameter.name; });
}

bool isRecord(const Parameter& parameter) { return parameter.type.kind == TypeKind::object; }

/// The variable in which the examples keep an object of the class.
std::string_view variableOf(std::string_view className) {
  static const std::map<std::string_view, std::string_view> kNames = {
      {"fiscalTrevikModule", "till"}, {"clsAdjust", "adjust"}, {"FiscalJournal", "journal"}, {"cTCPIP", "socket"}};
  const auto found = kNames.find(className);
  return found == kNames.end() ? "module" : found->second;
}

/// The variable that takes a result, with its declaration where the language wants one.
std::string declaration(const Parameter& parameter, const Dialect& dialect) {
  const TypeKind kind = parameter.receives == TypeKind::none ? parameter.type.kind : parameter.receives;
  const bool isText = kind == TypeKind::text;
  const std::string name(parameter.name);
  if (&dialect == &kVbScript) return {};
  if (&dialect == &kPython) {
    const std::string_view type = isText                        ? "VT_BSTR"
                                  : kind == TypeKind::real      ? "VT_R8"
                                  : kind == TypeKind::byte      ? "VT_UI1"
                                  : kind == TypeKind::integer32 ? "VT_I4"
                                                                : "VT_I2";
    return name + " = by_reference(" + std::string(type) + (isText ? ", \"\")" : ", 0)") + "\n";
  }
  // An untyped variable of the caller's is an object to C#.
  const std::string_view type = parameter.type.kind == TypeKind::variant ? "object"
                                : isText                                 ? "string"
                                : kind == TypeKind::real                 ? "double"
                                : kind == TypeKind::byte                 ? "byte"
                                : kind == TypeKind::integer32            ? "int"
                                                                         : "short";
  return std::string(type) + " " + name + (type == "object" ? " = null;\n" : isText ? " = \"\";\n" : " = 0;\n");
}

/// A record with what is assigned to it before the call.
std::string recordLines(const Parameter& parameter, const std::string& assignments, const Dialect& dialect) {
  std::string text = filled(dialect.makeRecord, parameter.name, parameter.type.name) + std::string(dialect.end) + "\n";
  for (std::size_t begin = 0; begin < assignments.size();) {
    const std::size_t end = std::min(assignments.find("; ", begin), assignments.size());
    text.append(parameter.name).append(".").append(assignments, begin, end - begin).append(dialect.end).append("\n");
    begin = end + 2;
  }
  return text;
}

std::string argument(const Parameter& parameter, const ExampleValue& valueOf, const Dialect& dialect) {
  const bool isCSharp = &dialect == &kCSharp;
  if (parameter.name == Outcome::kNames.back().name) return isCSharp ? "true" : "True";
  if (parameter.isOutput) return std::string(dialect.byReference).append(parameter.name);
  if (isRecord(parameter)) return std::string(parameter.name);
  std::string value = valueOf(parameter);
  if (isCSharp && (value == "True" || value == "False")) return value == "True" ? "true" : "false";
  return value;
}

std::string example(const ClassInfo& info, const Member& member, const ExampleValue& valueOf, const Dialect& dialect) {
  std::string before;
  std::string arguments;
  for (const Parameter& parameter : member.parameters) {
    if (parameter.isOptional && valueOf(parameter).empty()) continue;
    if (isRecord(parameter)) before += recordLines(parameter, valueOf(parameter), dialect);
    if (parameter.isOutput && !isOutcome(parameter)) before += declaration(parameter, dialect);
    arguments += (arguments.empty() ? "" : ", ") + argument(parameter, valueOf, dialect);
  }
  const bool isProperty = member.kind == MemberKind::get;
  const bool keeps = isProperty || (member.result.kind != TypeKind::none && member.result.kind != TypeKind::variant);
  std::string call;
  if (isProperty) {
    call = filled(dialect.keepObject, variableOf(member.result.name));
  } else if (keeps) {
    call = filled(dialect.keepValue, "answer");
  }
  call.append(variableOf(info.name())).append(".");
  // C# has no properties with parameters by reference; it calls their accessor.
  if (isProperty && &dialect == &kCSharp) call += "get_";
  call += member.name;
  if (keeps) {
    call += "(" + arguments + ")";
  } else if (!arguments.empty() || &dialect != &kVbScript) {
    call.append(dialect.openCall).append(arguments).append(dialect.closeCall);
  }
  return "```" + std::string(dialect.block) + "\n" + before + call + std::string(dialect.end) + "\n```\n";
}

}  // namespace

std::string callExamples(const ClassInfo& info, const Member& member, const ExampleValue& valueOf) {
  std::string text;
  for (const Dialect* dialect : {&kVbScript, &kCSharp, &kPython}) text += example(info, member, valueOf, *dialect);
  return text;
}

}  // namespace mirvane
