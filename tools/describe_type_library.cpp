// Writes the type library's description, in the interface definition language, to the standard output. Everything in it
// comes from the member tables of the public classes, and its help strings from the sentences of the reference.
//
//   describe-type-library DESCRIPTIONS

#include <algorithm>
#include <iostream>
#include <regex>
#include <string>

#include "tools/class_description.h"
#include "tools/descriptions.h"

namespace {

using namespace mirvane;

std::string_view withoutBraces(std::string_view id) { return id.substr(1, id.size() - 2); }

std::string interfaceName(std::string_view className) { return "_" + std::string(className); }

std::string typeName(const Type& type) {
  constexpr TypeWords kWords = {"void",   "VARIANT_BOOL", "unsigned char", "short",     "long",
                                "double", "BSTR",         "VARIANT",       "IDispatch*"};
  const bool isOurClass = type.kind == TypeKind::object && !type.name.empty();
  return isOurClass ? interfaceName(type.name) + "*" : typeText(type, kWords);
}

std::string parameterText(const Parameter& parameter) {
  std::string text = parameter.byReference ? "[in, out" : "[in";
  if (parameter.isOptional) text += ", optional";
  if (parameter.presetValue() != Value()) text += ", defaultvalue(" + literal(parameter.presetValue()) + ")";
  text += "] " + typeName(parameter.type) + (parameter.byReference ? "* " : " ");
  return text.append(parameter.name);
}

/// The attribute for what an object browser shows: a sentence without its Markdown, a guide's name in quotes. A type
/// library knows no Unicode.
std::string help(const std::string& sentence) {
  static const std::regex kLink(R"(\[([^\]]*)\]\([^)]*\))"), kCode("`"), kQuote(R"(["\\])");
  std::string text = std::regex_replace(sentence, kLink, "\"$1\"");
  text = std::regex_replace(text, kCode, "");
  if (std::any_of(text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c > '~'; })) {
    throw std::runtime_error("more than plain letters: " + text);
  }
  return "helpstring(\"" + std::regex_replace(text, kQuote, R"(\$&)") + "\")";
}

std::string memberText(const Member& member, const std::string& help) {
  std::string text = "[id(" + std::to_string(member.dispatchId) + ")";
  if (member.kind == MemberKind::get) text += ", propget";
  if (member.kind == MemberKind::put) {
    // A property of one class is set; one of any object is assigned to.
    const Type& type = member.parameters.back().type;
    text += type.kind == TypeKind::object && !type.name.empty() ? ", propputref" : ", propput";
  }
  text += ", " + help + "] " + typeName(member.result) + " " + std::string(member.name) + "(";
  std::string_view separator;
  for (const Parameter& parameter : member.parameters) {
    text.append(separator).append(parameterText(parameter));
    separator = ", ";
  }
  return text + ");";
}

void writeEnumeration() {
  std::cout << "  typedef [uuid(" << withoutBraces(kFiscalTypesId) << "), helpstring(\"Device families\")]\n"
            << "  enum FISCAL_TYPES {\n";
  std::string_view separator;
  for (const auto& [name, value] : kFiscalTypeNames) {
    std::cout << separator << "    " << name << " = " << value;
    separator = ",\n";
  }
  std::cout << "\n  } FISCAL_TYPES;\n\n";
}

void writeInterface(const PublicClass& c, Descriptions& descriptions) {
  const ClassInfo& info = c.describe();
  std::cout << "  [uuid(" << withoutBraces(c.interfaceId) << "), hidden]\n"
            << "  dispinterface " << interfaceName(info.name()) << " {\n"
            << "    properties:\n"
            << "    methods:\n";
  for (const Member& member : info.members()) {
    std::cout << "      " << memberText(member, help(sentenceOf(info, member, descriptions))) << "\n";
  }
  std::cout << "  };\n\n";
}

void writeClass(const PublicClass& c, Descriptions& descriptions) {
  const std::string name(c.describe().name());
  std::cout << "  [uuid(" << withoutBraces(c.classId) << "), " << help(descriptions.of(name)) << "]\n"
            << "  coclass " << name << " {\n"
            << "    [default] dispinterface " << interfaceName(name) << ";\n"
            << "  };\n\n";
}

void writeLibrary(Descriptions& descriptions) {
  std::cout << "// Made by describe-type-library from the member tables of the public classes. Not to be edited.\n\n"
            << "import \"base.idl\";\n\n"
            << "[uuid(" << withoutBraces(kTypeLibraryId) << "), version(" << kTypeLibraryMajor << "."
            << kTypeLibraryMinor << "), helpstring(\"Varlen Fiscal cash registers\")]\n"
            << "library " << kTypeLibraryName << " {\n";
  writeEnumeration();
  for (const PublicClass& c : publicClasses()) {
    std::cout << "  dispinterface " << interfaceName(c.describe().name()) << ";\n";
  }
  std::cout << "\n";
  for (const PublicClass& c : publicClasses()) writeInterface(c, descriptions);
  for (const PublicClass& c : publicClasses()) writeClass(c, descriptions);
  std::cout << "};\n";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: describe-type-library DESCRIPTIONS\n";
    return 2;
  }
  try {
    Descriptions descriptions(argv[1]);
    writeLibrary(descriptions);
  } catch (const std::exception& error) {
    std::cerr << argv[1] << ": " << error.what() << "\n";
    return 1;
  }
  std::cout.flush();
  return std::cout ? 0 : 1;
}
