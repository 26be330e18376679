// Writes reference.md, the public classes with their members, for the people who program against the component.
// Everything that the member tables know comes from there; the sentences about it are read from a file with a line
// "class.member: text" for each.
//
//   describe-members DESCRIPTIONS FOLDER

#include <algorithm>
#include <fstream>
#include <iostream>
#include <set>
#include <sstream>

#include "tools/class_description.h"
#include "tools/descriptions.h"

namespace {

using namespace mirvane;

constexpr std::string_view kMadeBy =
    "<!-- Made by describe-members (./run docs) from the member tables and docs/descriptions.txt. Not to be edited. "
    "-->\n\n";

// ---- Classes

constexpr std::size_t kColumns = 110;

constexpr TypeWords kWords = {"", "Boolean", "Byte", "Integer", "Long", "Double", "String", "Variant", "Object"};

std::string defaultText(const Value& value) {
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "True" : "False";
  return literal(value);
}

std::string parameterText(const Parameter& parameter) {
  std::string text = parameter.isOptional ? "Optional " : "";
  text += parameter.byReference ? "ByRef " : "ByVal ";
  text.append(parameter.name).append(" As ").append(typeText(parameter.type, kWords));
  if (parameter.presetValue() != Value()) text += " = " + defaultText(parameter.presetValue());
  return text;
}

/// As Basic declares it, over several lines where it is long.
std::string declaration(const Member& member) {
  const bool isProperty = member.kind == MemberKind::get;
  const bool hasResult = member.result.kind != TypeKind::none;
  std::string text(isProperty ? "Property Get " : hasResult ? "Function " : "Sub ");
  text.append(member.name).append("(");
  std::size_t lineStart = 0;
  for (const Parameter& parameter : member.parameters) {
    const bool isFirst = &parameter == &member.parameters.front();
    const std::string next = parameterText(parameter) + (&parameter == &member.parameters.back() ? "" : ",");
    if (!isFirst && text.size() - lineStart + next.size() >= kColumns) {
      text += '\n';
      lineStart = text.size();
      text += "    ";
    } else if (!isFirst) {
      text += ' ';
    }
    text += next;
  }
  text += ')';
  if (hasResult) text += " As " + typeText(member.result, kWords);
  return text;
}

bool isProperty(const Member& member) {
  return member.kind == MemberKind::put || (member.kind == MemberKind::get && member.parameters.empty());
}

const Type& propertyType(const Member& member) {
  return member.kind == MemberKind::put ? member.parameters.back().type : member.result;
}

std::string access(const std::vector<Member>& members, std::int32_t dispatchId) {
  std::string text;
  for (const MemberKind kind : {MemberKind::get, MemberKind::put}) {
    const auto isThis = [&](const Member& member) { return member.dispatchId == dispatchId && member.kind == kind; };
    if (std::none_of(members.begin(), members.end(), isThis)) continue;
    text += text.empty() ? "" : ", ";
    text += kind == MemberKind::get ? "read" : "write";
  }
  return text;
}

void writeProperties(std::ostream& page, const ClassInfo& info, Descriptions& descriptions) {
  std::set<std::int32_t> written;
  for (const Member& member : info.members()) {
    if (!isProperty(member) || written.contains(member.dispatchId)) continue;
    if (written.empty()) page << "| id | property | type | access | |\n|---|---|---|---|---|\n";
    written.insert(member.dispatchId);
    page << "| " << member.dispatchId << " | `" << member.name << "` | " << typeText(propertyType(member), kWords)
         << " | " << access(info.members(), member.dispatchId) << " | " << sentenceOf(info, member, descriptions)
         << " |\n";
  }
  if (!written.empty()) page << "\n";
}

void writeMethods(std::ostream& page, const ClassInfo& info, Descriptions& descriptions) {
  for (const Member& member : info.members()) {
    if (isProperty(member)) continue;
    page << "**" << member.name << "**, id " << member.dispatchId << ". " << sentenceOf(info, member, descriptions)
         << "\n\n```vb\n"
         << declaration(member) << "\n```\n\n";
  }
}

void writeReference(std::ostream& page, Descriptions& descriptions) {
  page << kMadeBy << "# Reference\n\n" << descriptions.of("reference") << "\n\n";
  page << "## Types\n\n"
       << "The declarations below are in Visual Basic's words. `ByRef`: the component may write to the variable. "
       << "A method `As Variant` returns Empty: what came of it is in `Result`.\n\n"
       << "| here | type library | C# | Delphi |\n|---|---|---|---|\n"
       << "| Boolean | VARIANT_BOOL | bool | WordBool |\n"
       << "| Byte | unsigned char | byte | Byte |\n"
       << "| Integer, 16 bits | short | short | Smallint |\n"
       << "| Long, 32 bits | long | int | Integer |\n"
       << "| Double | double | double | Double |\n"
       << "| String | BSTR | string | WideString |\n"
       << "| Variant | VARIANT | object | OleVariant |\n"
       << "| Object, a class | IDispatch | dynamic, the class | IDispatch, the class |\n\n";
  page << "## Enumeration FISCAL_TYPES\n\n| value | constant | |\n|---|---|---|\n";
  for (const auto& [name, value] : kFiscalTypeNames) {
    page << "| " << value << " | `" << name << "` | " << descriptions.of(subjectOf("FISCAL_TYPES", name)) << " |\n";
  }
  for (const PublicClass& c : publicClasses()) {
    const ClassInfo& info = c.describe();
    page << "\n## Class " << info.name() << "\n\n`CreateObject(\"" << kTypeLibraryName << "." << info.name() << "\")`. "
         << descriptions.of(std::string(info.name())) << "\n\n";
    std::ostringstream members;
    writeProperties(members, info, descriptions);
    writeMethods(members, info, descriptions);
    std::string text = members.str();
    text.pop_back();
    page << text;
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: describe-members DESCRIPTIONS FOLDER\n";
    return 2;
  }
  try {
    Descriptions descriptions(argv[1]);
    const std::string name = std::string(argv[2]) + "/reference.md";
    std::ofstream page(name, std::ios::binary);
    writeReference(page, descriptions);
    page.close();
    if (!page) throw std::runtime_error("cannot write " + name);
    descriptions.requireAllUsed();
  } catch (const std::exception& error) {
    std::cerr << argv[1] << ": " << error.what() << "\n";
    return 1;
  }
  return 0;
}
