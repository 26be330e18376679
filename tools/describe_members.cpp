// Writes the reference pages for the people who program against the component: reference.md, the public classes with
// their members, and result-codes.md. Everything that the member tables and the driver know comes from there; the
// sentences about it are read from a file with a line "class.member: text" for each.
//
//   describe-members DESCRIPTIONS FOLDER

#include <algorithm>
#include <fstream>
#include <functional>
#include <iomanip>
#include <iostream>
#include <set>
#include <sstream>

#include "protocol/device_codes.h"
#include "tools/class_description.h"
#include "tools/descriptions.h"

namespace {

using namespace mirvane;

constexpr std::string_view kMadeBy =
    "<!-- Made by describe-members (./run docs) from the member tables, the driver and docs/descriptions.txt. Not to "
    "be "
    "edited. -->\n\n";

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
  if (parameter.defaultValue != Value()) text += " = " + defaultText(parameter.defaultValue);
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
         << " | " << access(info.members(), member.dispatchId) << " | "
         << descriptions.of(subjectOf(info.name(), member.name)) << " |\n";
  }
  if (!written.empty()) page << "\n";
}

void writeMethods(std::ostream& page, const ClassInfo& info, Descriptions& descriptions) {
  for (const Member& member : info.members()) {
    if (isProperty(member)) continue;
    page << "**" << member.name << "**, id " << member.dispatchId << ". "
         << descriptions.of(subjectOf(info.name(), member.name)) << "\n\n```vb\n"
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

// ---- Result codes

constexpr std::int16_t kDeviceCodes = 166;
constexpr std::int16_t kNoDriver = 100;

/// What the component itself does about a code, and what the code means for the till.
std::string classification(std::int16_t code) {
  std::string text;
  const auto add = [&text](std::string_view word) { text.append(text.empty() ? "" : ", ").append(word); };
  if (endsByItself(code)) add("waited for");
  if (mayBeSentAgain(code)) add("sent again");
  if (isCritical(code)) add("critical");
  return text;
}

std::string hexDigits(int code) {
  std::ostringstream text;
  text << std::uppercase << std::hex << std::setw(2) << std::setfill('0') << code;
  return text.str();
}

void writeResultCodes(std::ostream& page, Descriptions& descriptions) {
  page << kMadeBy << "# Result codes\n\n"
       << descriptions.of("result-codes") << "\n\n"
       << "## The component's own\n\n| `Result` | meaning, and what to do | |\n|---|---|---|\n";
  for (const std::int16_t code :
       {std::int16_t{0}, link_result::kCannotOpen, link_result::kCannotConfigure, link_result::kNoAnswer,
        link_result::kNoAnswerToCommand, link_result::kNotOpen, link_result::kNotNow, kNoDriver}) {
    page << "| " << code << " | " << descriptions.of(subjectOf("Result", std::to_string(code))) << " | "
         << classification(code) << " |\n";
  }
  page << "\n## The device's\n\n"
       << descriptions.of("device-codes") << "\n\n"
       << "| `Result` | in the trace | text | |\n|---|---|---|---|\n";
  for (std::int16_t code = 1; code <= kDeviceCodes; ++code) {
    page << "| " << code << " | " << hexDigits(code) << " | " << toUtf8(deviceErrorText(code)) << " | "
         << classification(code) << " |\n";
  }
}

void writeFile(const std::string& name, const std::function<void(std::ostream&)>& write) {
  std::ostringstream page;
  write(page);
  std::ofstream file(name, std::ios::binary);
  file << page.str();
  file.close();
  if (!file) throw std::runtime_error("cannot write " + name);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: describe-members DESCRIPTIONS FOLDER\n";
    return 2;
  }
  try {
    Descriptions descriptions(argv[1]);
    const std::string folder = argv[2];
    writeFile(folder + "/reference.md", [&](std::ostream& page) { writeReference(page, descriptions); });
    writeFile(folder + "/result-codes.md", [&](std::ostream& page) { writeResultCodes(page, descriptions); });
    descriptions.requireAllUsed();
  } catch (const std::exception& error) {
    std::cerr << argv[1] << ": " << error.what() << "\n";
    return 1;
  }
  return 0;
}
