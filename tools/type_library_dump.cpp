// Prints the registered type library, one line for each thing that a program can see in it, in the library's order:
//
//   library NAME VERSION
//   enum NAME CONSTANT = VALUE
//   class NAME: INTERFACE "HELP"                 a class that can be created, its default interface and its help string
//   NAME ID KIND MEMBER(PARAMETERS) -> RESULT    a member of that interface; the class's lines follow it
//
// KIND is method, get, put or putref; ID the dispatch id. A parameter is "name: type", followed by " ref" when it is
// passed by reference in both directions, " optional" and " = default"; the value of a put has no name. A type is void,
// VARIANT_BOOL, byte, short, long, double, BSTR, VARIANT, the name of an enumeration or of an interface. A default is a
// number, True, False or a text in quotes. For example:
//
//   fiscalTrevikModule 1 get logoLineDescLength() -> short
//   cTCPIP 5 method IsDataAvailable(iTM: short ref optional = 1) -> VARIANT_BOOL
//   clsEFT 4 put eftPort(long) -> void
//   cPortProp 3 putref TCPClass(_cTCPIP) -> void
//
// What it cannot name so, it prints as a number behind a question mark, "?26", and a call that fails as "FAIL". Behind
// a member whose help string is missing, or is not made of plain sentences, stands "?help" and the string.

#include <iostream>
#include <stdexcept>

#include "com/com.h"
#include "component/component.h"
#include "text/code_page.h"

namespace {

using mirvane::com::ComPtr;

void check(HRESULT outcome, const char* call) {
  if (FAILED(outcome)) throw std::runtime_error(std::string(call) + " " + std::to_string(outcome));
}

std::string unknown(int number) { return "?" + std::to_string(number); }

std::string taken(BSTR text) {
  std::string narrow = text == nullptr ? "" : mirvane::toUtf8(mirvane::fromWide(text));
  SysFreeString(text);
  return narrow;
}

template <class Info>
std::string nameOf(Info& info, MEMBERID member = MEMBERID_NIL) {
  BSTR name = nullptr;
  check(info.GetDocumentation(member, &name, nullptr, nullptr, nullptr), "GetDocumentation");
  return taken(name);
}

template <class Info>
std::string helpOf(Info& info, MEMBERID member = MEMBERID_NIL) {
  BSTR help = nullptr;
  check(info.GetDocumentation(member, nullptr, &help, nullptr, nullptr), "GetDocumentation");
  return taken(help);
}

bool isPlain(const std::string& help) { return help.ends_with('.') && help.find_first_of("`[*") == std::string::npos; }

// A type description, with the system's structure that tells it.
class Described {
 public:
  explicit Described(ITypeInfo* info) : info_(info) { check(info->GetTypeAttr(&attributes_), "GetTypeAttr"); }
  Described(const Described&) = delete;
  Described& operator=(const Described&) = delete;
  ~Described() { info_->ReleaseTypeAttr(attributes_); }

  ITypeInfo& info() const { return *info_; }
  const TYPEATTR& attributes() const { return *attributes_; }

 private:
  ComPtr<ITypeInfo> info_;
  TYPEATTR* attributes_ = nullptr;
};

ITypeInfo* referred(ITypeInfo& info, HREFTYPE reference) {
  ITypeInfo* target = nullptr;
  check(info.GetRefTypeInfo(reference, &target), "GetRefTypeInfo");
  return target;
}

// An enumeration stands for itself, an interface only behind a pointer.
std::string namedType(ITypeInfo& info, const TYPEDESC& type, TYPEKIND expected) {
  if (type.vt != VT_USERDEFINED) return unknown(type.vt);
  const Described target(referred(info, type.hreftype));
  const TYPEKIND kind = target.attributes().typekind;
  return kind == expected ? nameOf(target.info()) : unknown(kind);
}

std::string typeText(ITypeInfo& info, const TYPEDESC& type) {
  switch (type.vt) {
    case VT_VOID:
      return "void";
    case VT_BOOL:
      return "VARIANT_BOOL";
    case VT_UI1:
      return "byte";
    case VT_I2:
      return "short";
    case VT_I4:
      return "long";
    case VT_R8:
      return "double";
    case VT_BSTR:
      return "BSTR";
    case VT_VARIANT:
      return "VARIANT";
    case VT_DISPATCH:
      return "Object";
    case VT_USERDEFINED:
      return namedType(info, type, TKIND_ENUM);
    case VT_PTR:
      return namedType(info, *type.lptdesc, TKIND_DISPATCH);
    default:
      return unknown(type.vt);
  }
}

std::string defaultText(const TYPEDESC& type, VARIANT value) {
  if (value.vt == VT_BSTR) return '"' + mirvane::toUtf8(mirvane::fromWide(value.bstrVal)) + '"';
  VARIANT number{};
  check(VariantChangeType(&number, &value, 0, VT_I4), "VariantChangeType");
  if (type.vt != VT_BOOL) return std::to_string(number.lVal);
  return number.lVal != 0 ? "True" : "False";
}

std::string parameterText(ITypeInfo& info, const ELEMDESC& parameter) {
  const USHORT flags = parameter.paramdesc.wParamFlags;
  constexpr USHORT kDirections = PARAMFLAG_FIN | PARAMFLAG_FOUT;
  const bool reference = (flags & kDirections) == kDirections && parameter.tdesc.vt == VT_PTR;
  const TYPEDESC& type = reference ? *parameter.tdesc.lptdesc : parameter.tdesc;
  std::string text = typeText(info, type);
  if (reference) text += " ref";
  if (!reference && (flags & kDirections) != PARAMFLAG_FIN) text += " " + unknown(flags);
  if ((flags & PARAMFLAG_FOPT) != 0) text += " optional";
  if ((flags & PARAMFLAG_FHASDEFAULT) != 0) {
    text += " = " + defaultText(type, parameter.paramdesc.pparamdescex->varDefaultValue);
  }
  return text;
}

std::string kindText(INVOKEKIND kind) {
  switch (kind) {
    case INVOKE_FUNC:
      return "method";
    case INVOKE_PROPERTYGET:
      return "get";
    case INVOKE_PROPERTYPUT:
      return "put";
    case INVOKE_PROPERTYPUTREF:
      return "putref";
    default:
      return unknown(kind);
  }
}

std::string memberText(ITypeInfo& info, const FUNCDESC& function) {
  constexpr UINT kMostNames = 32;
  BSTR names[kMostNames] = {};
  UINT count = 0;
  check(info.GetNames(function.memid, names, kMostNames, &count), "GetNames");
  std::string text = std::to_string(function.memid) + " " + kindText(function.invkind) + " " + taken(names[0]) + "(";
  for (int i = 0; i < function.cParams; ++i) {
    if (i > 0) text += ", ";
    if (names[i + 1] != nullptr) text += taken(names[i + 1]) + ": ";
    text += parameterText(info, function.lprgelemdescParam[i]);
  }
  text += ") -> " + typeText(info, function.elemdescFunc.tdesc);
  const std::string help = helpOf(info, function.memid);
  return isPlain(help) ? text : text + " ?help " + help;
}

void printEnumeration(const Described& enumeration) {
  for (UINT i = 0; i < enumeration.attributes().cVars; ++i) {
    VARDESC* constant = nullptr;
    check(enumeration.info().GetVarDesc(i, &constant), "GetVarDesc");
    std::cout << "enum " << nameOf(enumeration.info()) << " " << nameOf(enumeration.info(), constant->memid) << " = "
              << constant->lpvarValue->lVal << "\n";
    enumeration.info().ReleaseVarDesc(constant);
  }
}

void printMembers(const std::string& className, const Described& described) {
  // Of a dispatch interface, only what the library itself tells.
  constexpr MEMBERID kFirstInherited = 0x60000000;
  for (UINT i = 0; i < described.attributes().cFuncs; ++i) {
    FUNCDESC* function = nullptr;
    check(described.info().GetFuncDesc(i, &function), "GetFuncDesc");
    if (function->memid < kFirstInherited) {
      std::cout << className << " " << memberText(described.info(), *function) << "\n";
    }
    described.info().ReleaseFuncDesc(function);
  }
  for (UINT i = 0; i < described.attributes().cVars; ++i) std::cout << className << " ?property\n";
}

void printClass(const Described& described) {
  const std::string name = nameOf(described.info());
  for (UINT i = 0; i < described.attributes().cImplTypes; ++i) {
    HREFTYPE reference = 0;
    check(described.info().GetRefTypeOfImplType(i, &reference), "GetRefTypeOfImplType");
    const Described face(referred(described.info(), reference));
    std::cout << "class " << name << ": " << nameOf(face.info()) << " \"" << helpOf(described.info()) << "\"\n";
    printMembers(name, face);
  }
}

void printLibrary() {
  ITypeLib* loaded = nullptr;
  check(LoadRegTypeLib(mirvane::com::guidFrom(mirvane::kTypeLibraryId), mirvane::kTypeLibraryMajor,
                       mirvane::kTypeLibraryMinor, 0, &loaded),
        "LoadRegTypeLib");
  const ComPtr<ITypeLib> library(loaded);
  TLIBATTR* attributes = nullptr;
  check(library->GetLibAttr(&attributes), "GetLibAttr");
  std::cout << "library " << nameOf(*library, -1) << " " << attributes->wMajorVerNum << "." << attributes->wMinorVerNum
            << "\n";
  library->ReleaseTLibAttr(attributes);
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    ITypeInfo* info = nullptr;
    check(library->GetTypeInfo(i, &info), "GetTypeInfo");
    const Described described(info);
    if (described.attributes().typekind == TKIND_ENUM) printEnumeration(described);
    if (described.attributes().typekind == TKIND_COCLASS) printClass(described);
  }
}

}  // namespace

int main() {
  try {
    check(CoInitialize(nullptr), "CoInitialize");
    printLibrary();
    CoUninitialize();
    return 0;
  } catch (const std::exception& error) {
    std::cout << "FAIL " << error.what() << "\n";
    return 1;
  }
}
