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

#include "facade/fiscal_null_module.h"
#include "interface/outcome.h"
#include "tools/call_examples.h"
#include "tools/class_description.h"
#include "tools/descriptions.h"

namespace {

using namespace mirvane;

constexpr std::string_view kMadeBy =
    "<!-- Made by describe-members (./run docs) from the member tables and docs/descriptions.txt. Not to be edited. "
    "-->\n\n";

constexpr std::string_view kHowToRead =
    R"(## How to read the examples

Each example is one call in VBScript, C# and Python. These lines come before all of them.

```vb
Dim Result, Exresult
Set till = CreateObject("VarlenFiscalQ7734.fiscalTrevikModule")
```
```csharp
using VarlenFiscalQ7734;   // the COM reference "Varlen Fiscal cash registers"
short Result = 0;
string Exresult = "";
var till = new fiscalTrevikModule();
```
```python
import pythoncom
from pythoncom import VT_BSTR, VT_I2, VT_I4, VT_R8, VT_UI1
from win32com.client import VARIANT
from win32com.client.dynamic import DumbDispatch as Dispatch

def by_reference(kind, value):
    return VARIANT(pythoncom.VT_BYREF | kind, value)

Result, Exresult = by_reference(VT_I2, 0), by_reference(VT_BSTR, "")
till = Dispatch("VarlenFiscalQ7734.fiscalTrevikModule")
till._FlagAsMethod("DrawerOpen")  # every method once, by its name
```

`adjust` is what `adjustment` returned; `journal` and `socket` are a `FiscalJournal` and a `cTCPIP`, created like `till`.
Python finds a result in `Result.value`. C# and Python have not been run here in this form; [languages](languages.md)
says what was run, and how other languages call the component. Most optional
parameters are left out.

## The outcome of a call

Nearly every method has these three parameters.

| parameter | | meaning | unit | range |
|---|---|---|---|---|
| `Result` | out | 0 when the operation succeeded: see [result codes](result-codes.md) | – | 0; above 0 the register's code, below 0 a failed port or link |
| `Exresult` | out | the text for the operator, or what the call reads | characters | – |
| `SupressError_` | in | True shows no message box | – | True, False |

`Result` and `Exresult` must be variables: see [languages](languages.md#by-reference).

)";

// ---- Classes

constexpr std::size_t kColumns = 80;

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

// ---- Methods

/// What is told about a parameter.
struct ParameterText {
  std::string meaning, unit, range, example;
};

ParameterText textOf(const ClassInfo& info, const Member& member, const Parameter& parameter,
                     Descriptions& descriptions) {
  const std::string name = std::string("(").append(parameter.name).append(")");
  const std::string own = subjectOf(info.name(), member.name) + name;
  std::string text = descriptions.has(own) ? descriptions.of(own) : descriptions.of(name);
  ParameterText parts;
  for (std::string* part : {&parts.meaning, &parts.unit, &parts.range}) {
    const std::size_t end = text.find(" |");
    if (end == std::string::npos) throw std::runtime_error(own + " has not four parts");
    *part = text.substr(0, end);
    text.erase(0, std::min(end + 3, text.size()));
  }
  parts.example = text;
  return parts;
}

/// As a cell of a table.
std::string cell(std::string text) {
  for (std::size_t at = 0; (at = text.find('|', at)) != std::string::npos; at += 2) text.insert(at, "\\");
  return text;
}

std::string directionOf(const Parameter& parameter) {
  if (parameter.isOutput) return "out";
  return parameter.isOptional ? "in, optional" : "in";
}

bool isOutcome(const Parameter& parameter) {
  return std::ranges::any_of(Outcome::kNames, [&](const Parameter& one) { return one.name == parameter.name; });
}

void writeParameters(std::ostream& page, const ClassInfo& info, const Member& member, Descriptions& descriptions) {
  const auto isOwn = [](const Parameter& parameter) { return !isOutcome(parameter); };
  if (std::ranges::none_of(member.parameters, isOwn)) return;
  page << "| parameter | | meaning | unit | range |\n|---|---|---|---|---|\n";
  for (const Parameter& parameter : member.parameters) {
    if (isOutcome(parameter)) continue;
    const ParameterText text = textOf(info, member, parameter, descriptions);
    page << "| `" << parameter.name << "` | " << directionOf(parameter) << " | " << cell(text.meaning) << " | "
         << cell(text.unit) << " | " << cell(text.range) << " |\n";
  }
  page << "\n";
}

void writeMethods(std::ostream& page, const ClassInfo& info, Descriptions& descriptions) {
  for (const Member& member : info.members()) {
    if (isProperty(member)) continue;
    page << "### " << member.name << "\n\n"
         << sentenceOf(info, member, descriptions) << " Dispatch id " << member.dispatchId << ".\n\n```vb\n"
         << declaration(member) << "\n```\n\n";
    writeParameters(page, info, member, descriptions);
    page << callExamples(info, member, [&](const Parameter& parameter) {
      return textOf(info, member, parameter, descriptions).example;
    }) << "\n";
  }
}

/// The methods of the null driver look like the facade's, and refuse.
void listMethods(std::ostream& page, const ClassInfo& info, Descriptions& descriptions) {
  page << "| id | method | |\n|---|---|---|\n";
  for (const Member& member : info.members()) {
    if (isProperty(member)) continue;
    page << "| " << member.dispatchId << " | `" << member.name << "` | "
         << descriptions.of(subjectOf(info.name(), member.name)) << " |\n";
  }
  page << "\n";
}

void writeReference(std::ostream& page, Descriptions& descriptions) {
  page << kMadeBy << "# Reference\n\n" << descriptions.of("reference") << "\n\n" << kHowToRead;
  page << "## Types\n\n"
       << "The declarations below are in Visual Basic. `ByRef`: the component may write to the variable. "
       << "Methods declared `As Variant` return Empty; the outcome is in `Result`.\n\n"
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
    (&info == &fiscalNullModule::describe() ? listMethods : writeMethods)(members, info, descriptions);
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
