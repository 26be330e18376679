// Writes the type library's description, in the interface definition language, to the standard output. Everything in it
// comes from the member tables of the public classes.

#include <iostream>
#include <string>

#include "tools/class_description.h"

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
  if (parameter.defaultValue != Value()) text += ", defaultvalue(" + literal(parameter.defaultValue) + ")";
  text += "] " + typeName(parameter.type) + (parameter.byReference ? "* " : " ");
  return text.append(parameter.name);
}

std::string memberText(const Member& member) {
  std::string text = "[id(" + std::to_string(member.dispatchId) + ")";
  if (member.kind == MemberKind::get) text += ", propget";
  if (member.kind == MemberKind::put) {
    // A property of one class is set; one of any object is assigned to.
    const Type& type = member.parameters.back().type;
    text += type.kind == TypeKind::object && !type.name.empty() ? ", propputref" : ", propput";
  }
  text += "] " + typeName(member.result) + " " + std::string(member.name) + "(";
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

void writeInterface(const PublicClass& c) {
  const ClassInfo& info = c.describe();
  std::cout << "  [uuid(" << withoutBraces(c.interfaceId) << "), hidden]\n"
            << "  dispinterface " << interfaceName(info.name()) << " {\n"
            << "    properties:\n"
            << "    methods:\n";
  for (const Member& member : info.members()) std::cout << "      " << memberText(member) << "\n";
  std::cout << "  };\n\n";
}

void writeClass(const PublicClass& c) {
  const std::string_view name = c.describe().name();
  std::cout << "  [uuid(" << withoutBraces(c.classId) << ")]\n"
            << "  coclass " << name << " {\n"
            << "    [default] dispinterface " << interfaceName(name) << ";\n"
            << "  };\n\n";
}

}  // namespace

int main() {
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
  for (const PublicClass& c : publicClasses()) writeInterface(c);
  for (const PublicClass& c : publicClasses()) writeClass(c);
  std::cout << "};\n";
  std::cout.flush();
  return std::cout ? 0 : 1;
}
