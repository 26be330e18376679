#include "component/component.h"

#include <functional>
#include <map>

#include "check/child.h"
#include "check/doctor.h"
#include "check/machine.h"
#include "check/texts.h"
#include "check/windows/library.h"
#include "check/windows/registry.h"

namespace mirvane::check {
namespace {

namespace fs = std::filesystem;

constexpr double kTrySeconds = 30;

std::wstring widened(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

REGSAM viewOf(int bits) { return bits == 64 ? KEY_WOW64_64KEY : KEY_WOW64_32KEY; }

// Programs of the other bitness see this folder under the system's own name.
std::wstring asSeenHere(std::wstring file, int bits) {
  constexpr std::wstring_view kFolder = L"\\system32\\";
  const bool isOwnKind = bits == static_cast<int>(8 * sizeof(void*));
  std::wstring lower = file;
  CharLowerBuffW(lower.data(), static_cast<DWORD>(lower.size()));
  const std::size_t at = lower.find(kFolder);
  if (isOwnKind || at == std::wstring::npos) return file;
  return file.replace(at, kFolder.size(), bits == 32 ? L"\\SysWOW64\\" : L"\\Sysnative\\");
}

fs::path registeredFile(HKEY root, int bits, std::string_view classId) {
  const std::wstring key = L"Software\\Classes\\CLSID\\" + widened(classId) + L"\\InprocServer32";
  std::wstring file = registryText(root, key, nullptr, viewOf(bits));
  std::erase(file, L'"');
  return asSeenHere(file, bits);
}

bool isSame(const fs::path& a, const fs::path& b) {
  std::error_code error;
  return a == b || fs::equivalent(a, b, error);
}

std::string registerCommand(int bits, const fs::path& library) {
  const std::string registrar = nameOf(registrarOf(bits));
  if (library.empty()) return say(texts::kInstallIt, {std::to_string(bits), registrar});
  return say(texts::kRegisterIt, {std::to_string(bits), registrar, nameOf(library)});
}

// What programs of this bitness find.
struct Registration {
  int bits;
  fs::path user, machine;

  explicit Registration(int wanted) : bits(wanted) {
    const std::string_view facade = publicClasses().front().classId;
    user = registeredFile(HKEY_CURRENT_USER, bits, facade);
    machine = registeredFile(HKEY_LOCAL_MACHINE, bits, facade);
  }

  bool isForUser() const { return !user.empty(); }
  const fs::path& file() const { return isForUser() ? user : machine; }
  HKEY root() const { return isForUser() ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE; }
};

// Classes not registered with the same DLL as the first one. Their names are the same for both bitnesses.
std::string strayClasses(const Registration& found, int& count) {
  std::string names;
  for (const PublicClass& each : publicClasses()) {
    const std::string name(each.describe().name());
    const std::wstring id = L"Software\\Classes\\" + widened(kTypeLibraryName) + L"." + widened(name) + L"\\CLSID";
    if (isSame(registeredFile(found.root(), found.bits, each.classId), found.file()) &&
        registryText(found.root(), id) == widened(each.classId)) {
      continue;
    }
    names += (names.empty() ? "" : ", ") + name;
    ++count;
  }
  return names;
}

// Whether a browser or mail program has marked the file as coming from the internet.
bool isBlocked(const fs::path& file) {
  std::error_code error;
  const fs::path mark = file.wstring() + L":Zone.Identifier";
  return GetFileAttributesW(mark.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// Has a program of the library's bitness create the object, through its registration or from `folder`.
void tryToCreate(Findings& findings, int bits, const std::string& remedy, const fs::path& folder = {}) {
  for (const Twin& twin : twins()) {
    if (twin.bits != bits || twin.program.empty()) continue;
    const char* const language = speaksGreek() ? "el" : "en";
    std::string reason = say(texts::kNoAnswerOfTwin);
    try {
      std::vector<std::string> arguments = {"--language", language, "--try-component"};
      if (!folder.empty()) arguments.insert(arguments.end(), {"--folder", nameOf(folder)});
      Child child(twin.program, arguments);
      const Findings told = fromLines(child.outputWithin(kTrySeconds).value_or(""));
      if (told.count(Mark::kOk) > 0) return findings.add(told);
      if (!told.list().empty()) reason = told.list().front().what;
    } catch (const std::runtime_error& error) {
      reason = error.what();
    }
    findings.fault(say(texts::kCannotBeMade, {std::to_string(bits), reason}), remedy);
  }
}

void examineRegistration(Findings& findings, const Registration& found) {
  const std::string bits = std::to_string(found.bits), file = nameOf(found.file());
  const int actual = bitsOf(found.file());
  std::error_code error;
  if (!fs::exists(found.file(), error)) {
    return findings.fault(say(texts::kMoved, {bits, file}), registerCommand(found.bits, libraryOfPackage(found.bits)));
  }
  if (actual == 0) return findings.fault(say(texts::kNoLibrary, {file}), say(texts::kReplaceFile));
  if (actual != found.bits) {
    return findings.fault(say(texts::kWrongBits, {bits, file, std::to_string(actual)}),
                          registerCommand(found.bits, libraryOfPackage(found.bits)));
  }
  findings.ok(say(texts::kRegistered, {bits, file, versionOf(found.file()),
                                       say(found.isForUser() ? texts::kForUser : texts::kForAllUsers)}));
  if (found.isForUser() && found.machine.empty()) findings.note(say(texts::kUserOnly, {bits}));
  if (found.isForUser() && !found.machine.empty() && !isSame(found.user, found.machine)) {
    findings.warning(say(texts::kTwoRegistered, {bits, file, nameOf(found.machine)}),
                     say(texts::kUnregisterUser, {nameOf(registrarOf(found.bits)), file}));
  }
  int count = 0;
  if (const std::string names = strayClasses(found, count); count > 0) {
    findings.fault(say(texts::kIncomplete, {bits, std::to_string(count), names}),
                   registerCommand(found.bits, found.file()));
  }
  if (isBlocked(found.file())) findings.warning(say(texts::kBlocked, {file}), say(texts::kUnblock));
  tryToCreate(findings, found.bits, registerCommand(found.bits, found.file()));
}

}  // namespace

void examineFolder(Findings& findings, const fs::path& folder) {
  const fs::path library = folder / "MirvaneEFT.dll";
  const std::string file = nameOf(library);
  std::error_code error;
  if (!fs::exists(library, error)) {
    return findings.fault(say(texts::kNoFileInFolder, {nameOf(folder)}), say(texts::kGiveFolder));
  }
  const int bits = bitsOf(library);
  if (bits == 0) return findings.fault(say(texts::kNoLibrary, {file}), say(texts::kReplaceFile));
  findings.ok(say(texts::kInFolder, {file, std::to_string(bits), versionOf(library)}));
  if (isBlocked(library)) findings.warning(say(texts::kBlocked, {file}), say(texts::kUnblock));
  tryToCreate(findings, bits, say(texts::kReplaceFile), folder);
  examineCatalogue(findings, folder);
}

void examineComponent(Findings& findings, std::vector<fs::path>& folders) {
  std::map<int, std::string> versions;
  std::vector<int> missing;
  for (const Twin& twin : twins()) {
    const Registration found(twin.bits);
    if (found.file().empty()) {
      missing.push_back(twin.bits);
      continue;
    }
    examineRegistration(findings, found);
    if (bitsOf(found.file()) == 0) continue;
    versions[twin.bits] = versionOf(found.file());
    const fs::path folder = found.file().parent_path();
    if (!folders.empty() && isSame(folders.back(), folder)) continue;
    examineCatalogue(findings, folder);
    folders.push_back(folder);
  }
  if (missing.size() == twins().size()) {
    std::string commands;
    for (const int bits : missing) {
      commands += (commands.empty() ? "" : "\n") + registerCommand(bits, libraryOfPackage(bits));
    }
    return findings.fault(say(texts::kNotRegistered), commands);
  }
  for (const int bits : missing) {
    const std::string number = std::to_string(bits);
    findings.warning(say(texts::kNotRegisteredFor, {number}),
                     say(texts::kIfTillIs, {number, registerCommand(bits, libraryOfPackage(bits))}));
  }
  if (versions.size() == 2 && versions[32] != versions[64]) {
    findings.warning(say(texts::kVersionsDiffer, {versions[32], versions[64]}), say(texts::kInstallBoth));
  }
}

}  // namespace mirvane::check
