#include "com/registration.h"

#include <shlwapi.h>

#include <string>

#include "com/type_library.h"
#include "component/component.h"

namespace mirvane::com {
namespace {

const std::wstring kClasses = L"Software\\Classes\\";
const std::wstring kPlatform = sizeof(void*) == 8 ? L"win64" : L"win32";
// The system's marshaler, which carries calls of any dispatch interface between apartments.
const std::wstring kDispatchProxy = L"{00020420-0000-0000-C000-000000000046}";

std::wstring widened(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

std::wstring programmaticId(const PublicClass& c) {
  return widened(kTypeLibraryName) + L'.' + widened(c.describe().name());
}

std::wstring classKey(const PublicClass& c) { return kClasses + L"CLSID\\" + widened(c.classId); }

std::wstring interfaceKey(const PublicClass& c) { return kClasses + L"Interface\\" + widened(c.interfaceId); }

std::wstring libraryKey() { return kClasses + L"TypeLib\\" + widened(kTypeLibraryId); }

std::wstring version() { return std::to_wstring(kTypeLibraryMajor) + L'.' + std::to_wstring(kTypeLibraryMinor); }

HKEY rootOf(Scope scope) { return scope == Scope::user ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE; }

struct Failure {
  HRESULT outcome;
};

void must(HRESULT outcome) {
  if (FAILED(outcome)) throw Failure{outcome};
}

void checkStatus(LSTATUS status) { must(HRESULT_FROM_WIN32(static_cast<DWORD>(status))); }

void set(HKEY root, const std::wstring& key, const wchar_t* name, const std::wstring& value) {
  const std::size_t size = (value.size() + 1) * sizeof(wchar_t);
  checkStatus(RegSetKeyValueW(root, key.c_str(), name, REG_SZ, value.c_str(), static_cast<DWORD>(size)));
}

bool exists(HKEY root, const std::wstring& key, REGSAM view = 0) {
  HKEY opened = nullptr;
  if (RegOpenKeyExW(root, key.c_str(), 0, KEY_READ | view, &opened) != ERROR_SUCCESS) return false;
  RegCloseKey(opened);
  return true;
}

void remove(HKEY root, const std::wstring& key) {
  const LSTATUS status = RegDeleteTreeW(root, key.c_str());
  if (status != ERROR_FILE_NOT_FOUND) checkStatus(status);
}

void registerClass(HKEY root, const PublicClass& c) {
  const std::wstring id = programmaticId(c);
  const std::wstring key = classKey(c);
  set(root, key, nullptr, id);
  set(root, key + L"\\InprocServer32", nullptr, platform::ownPath());
  set(root, key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
  set(root, key + L"\\ProgID", nullptr, id);
  set(root, key + L"\\Programmable", nullptr, L"");
  set(root, key + L"\\TypeLib", nullptr, widened(kTypeLibraryId));
  set(root, key + L"\\Version", nullptr, version());
  set(root, kClasses + id, nullptr, id);
  set(root, kClasses + id + L"\\CLSID", nullptr, widened(c.classId));

  const std::wstring face = interfaceKey(c);
  set(root, face, nullptr, L'_' + widened(c.describe().name()));
  set(root, face + L"\\ProxyStubClsid32", nullptr, kDispatchProxy);
  set(root, face + L"\\TypeLib", nullptr, widened(kTypeLibraryId));
  set(root, face + L"\\TypeLib", L"Version", version());
}

void unregisterClass(HKEY root, const PublicClass& c) {
  remove(root, classKey(c));
  remove(root, interfaceKey(c));
  // The programmatic identifier is shared by 32-bit and 64-bit programs; their classes are separate.
  if (exists(root, classKey(c), KEY_WOW64_32KEY) || exists(root, classKey(c), KEY_WOW64_64KEY)) return;
  remove(root, kClasses + programmaticId(c));
}

// Written here instead of by the system's calls, which cannot always keep a user's registration apart from the
// machine's.
void registerTypeLibrary(HKEY root) {
  ComPtr<ITypeLib> library;
  must(loadTypeLibrary(library));
  BSTR description = nullptr;
  must(library->GetDocumentation(MEMBERID_NIL, nullptr, &description, nullptr, nullptr));
  const std::wstring shown(description, SysStringLen(description));
  SysFreeString(description);

  const std::wstring key = libraryKey() + L'\\' + version();
  set(root, key, nullptr, shown);
  set(root, key + L"\\FLAGS", nullptr, L"0");
  set(root, key + L"\\0\\" + kPlatform, nullptr, platform::ownPath());
  const std::wstring file = platform::ownPath();
  set(root, key + L"\\HELPDIR", nullptr, file.substr(0, file.find_last_of(L'\\')));
}

void unregisterTypeLibrary(HKEY root) {
  const std::wstring key = libraryKey() + L'\\' + version();
  remove(root, key + L"\\0\\" + kPlatform);
  if (exists(root, key + L"\\0\\win32") || exists(root, key + L"\\0\\win64")) return;
  remove(root, key);
  SHDeleteEmptyKeyW(root, libraryKey().c_str());
}

// Runs a step even if an earlier one failed, and keeps the first failure.
template <class F>
void attempt(HRESULT& outcome, F step) {
  try {
    step();
  } catch (const Failure& failure) {
    if (SUCCEEDED(outcome)) outcome = failure.outcome;
  }
}

}  // namespace

HRESULT registerComponent(Scope scope) {
  const HKEY root = rootOf(scope);
  HRESULT outcome = S_OK;
  attempt(outcome, [root] {
    for (const PublicClass& c : publicClasses()) registerClass(root, c);
    registerTypeLibrary(root);
  });
  if (FAILED(outcome)) unregisterComponent(scope);
  return outcome;
}

HRESULT unregisterComponent(Scope scope) {
  const HKEY root = rootOf(scope);
  HRESULT outcome = S_OK;
  for (const PublicClass& c : publicClasses()) {
    attempt(outcome, [root, &c] { unregisterClass(root, c); });
  }
  attempt(outcome, [root] { unregisterTypeLibrary(root); });
  // The user may have no other classes.
  for (const wchar_t* folder : {L"CLSID", L"Interface", L"TypeLib"}) {
    SHDeleteEmptyKeyW(root, (kClasses + folder).c_str());
  }
  return outcome;
}

}  // namespace mirvane::com
