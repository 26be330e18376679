// clang-format off
#include "platform/windows/windows.h"
#include <shellapi.h>  // which does not include <windows.h> itself
#include <shlobj.h>
// clang-format on

#include "check/machine.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iostream>
#include <map>

#include "check/texts.h"
#include "check/windows/library.h"
#include "check/windows/registry.h"
#include "component/component.h"
#include "embedding/windows/registered_object.h"
#include "state/module_state.h"
#include "text/code_page.h"

namespace mirvane::check {
namespace {

namespace fs = std::filesystem;

bool isConsole(HANDLE stream) {
  DWORD mode = 0;
  return GetConsoleMode(stream, &mode) != FALSE;
}

class WindowsWatch final : public WindowWatch {
 public:
  explicit WindowsWatch(const char* className) : className_(className) {
    thread_ = CreateThread(nullptr, 0, &WindowsWatch::look, this, 0, nullptr);
  }
  WindowsWatch(const WindowsWatch&) = delete;
  WindowsWatch& operator=(const WindowsWatch&) = delete;
  ~WindowsWatch() override { stop(); }

  bool hasComeAndGone() override {
    stop();
    return seen_ && !isThere();
  }

 private:
  static DWORD WINAPI look(void* self) {
    auto& watch = *static_cast<WindowsWatch*>(self);
    constexpr DWORD kPause = 10;
    for (; WaitForSingleObject(watch.end_, kPause) == WAIT_TIMEOUT; watch.seen_ = watch.seen_ || watch.isThere()) {
    }
    return 0;
  }
  bool isThere() const {
    for (HWND window = nullptr; (window = FindWindowExA(nullptr, window, className_, nullptr)) != nullptr;) {
      DWORD process = 0;
      GetWindowThreadProcessId(window, &process);
      if (process == GetCurrentProcessId() && IsWindowVisible(window) != FALSE) return true;
    }
    return false;
  }
  void stop() {
    if (thread_ == nullptr) return;
    SetEvent(end_);
    WaitForSingleObject(thread_, INFINITE);
    CloseHandle(thread_);
    CloseHandle(end_);
    thread_ = nullptr;
  }

  const char* className_;
  HANDLE end_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  HANDLE thread_ = nullptr;
  bool seen_ = false;
};

// The real version number: the documented call returns an older one to programs without a manifest.
std::string systemVersion() {
  using Tell = LONG(WINAPI*)(OSVERSIONINFOW*);
  OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof version;
  if (auto* const entry = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion"); entry != nullptr) {
    reinterpret_cast<Tell>(reinterpret_cast<void*>(entry))(&version);
  }
  return std::to_string(version.dwMajorVersion) + "." + std::to_string(version.dwMinorVersion) + "." +
         std::to_string(version.dwBuildNumber);
}

bool isElevated() {
  HANDLE token = nullptr;
  TOKEN_ELEVATION elevation{};
  DWORD size = 0;
  if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token) == FALSE) return false;
  GetTokenInformation(token, TokenElevation, &elevation, sizeof elevation, &size);
  CloseHandle(token);
  return elevation.TokenIsElevated != 0;
}

}  // namespace

std::vector<std::string> commandLine(int /*count*/, char** /*arguments*/) {
  int count = 0;
  wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(toUtf8(fromWide(words[i])));
  LocalFree(words);
  return arguments;
}

void print(const std::string& text) {
  const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
  DWORD written = 0;
  if (isConsole(output)) {
    const std::wstring wide = toWide(fromUtf8(text));
    // An old console accepts no more at once.
    constexpr std::size_t kPiece = 8000;
    for (std::size_t at = 0; at < wide.size(); at += kPiece) {
      const std::wstring piece = wide.substr(at, kPiece);
      WriteConsoleW(output, piece.c_str(), static_cast<DWORD>(piece.size()), &written, nullptr);
    }
  } else {
    WriteFile(output, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
  }
}

std::optional<std::string> readLine() {
  const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
  std::string line;
  if (!isConsole(input)) {
    if (!std::getline(std::cin, line)) return std::nullopt;
  } else {
    std::array<wchar_t, 300> typed{};
    DWORD count = 0;
    if (ReadConsoleW(input, typed.data(), typed.size(), &count, nullptr) == FALSE || count == 0) return std::nullopt;
    line = toUtf8(fromWide({typed.data(), count}));
  }
  line.erase(line.find_last_not_of("\r\n") + 1);
  return line;
}

bool hasOwnConsole() {
  std::array<DWORD, 2> processes{};
  return isConsole(GetStdHandle(STD_INPUT_HANDLE)) && isConsole(GetStdHandle(STD_OUTPUT_HANDLE)) &&
         GetConsoleProcessList(processes.data(), processes.size()) == 1;
}

fs::path desktop() {
  std::array<wchar_t, MAX_PATH> folder{};
  if (FAILED(SHGetFolderPathW(nullptr, CSIDL_DESKTOPDIRECTORY, nullptr, SHGFP_TYPE_CURRENT, folder.data()))) {
    return fs::current_path();
  }
  return folder.data();
}

bool systemSpeaksGreek() { return PRIMARYLANGID(GetUserDefaultUILanguage()) == LANG_GREEK; }

std::string describeSystem() {
  std::array<wchar_t, 257> user{};
  auto length = static_cast<DWORD>(user.size());
  GetUserNameW(user.data(), &length);
  return "Windows " + systemVersion() + (isSystemOf64Bits() ? ", 64 bit, " : ", 32 bit, ") +
         toUtf8(fromWide(user.data())) + (isElevated() ? " (elevated)" : "");
}

fs::path ownProgram() { return platform::ownPath(); }

fs::path pathOf(const std::string& name) { return toWide(fromUtf8(name)); }

std::string nameOf(const fs::path& path) { return toUtf8(fromWide(fs::path(path).make_preferred().wstring())); }

std::string programName(const std::string& name) { return name + ".exe"; }

std::vector<SerialPortName> serialPorts() {
  // By number: ports that the system lists, and those known only by name, such as a program's virtual ports.
  std::map<int, std::string> found;
  constexpr int kMost = 256;
  std::array<wchar_t, 1024> target{};
  for (int number = 1; number <= kMost; ++number) {
    const std::wstring name = L"COM" + std::to_wstring(number);
    if (QueryDosDeviceW(name.c_str(), target.data(), static_cast<DWORD>(target.size())) != 0) found[number] = "";
  }
  for (const auto& [device, name] : registryTexts(HKEY_LOCAL_MACHINE, L"HARDWARE\\DEVICEMAP\\SERIALCOMM")) {
    const int number = name.starts_with(L"COM") ? std::wcstol(name.c_str() + 3, nullptr, 10) : 0;
    if (number > 0) found[number] = toUtf8(fromWide(device.substr(device.rfind(L'\\') + 1)));
  }
  std::vector<SerialPortName> ports;
  for (const auto& [number, device] : found) ports.push_back({"COM" + std::to_string(number), device});
  return ports;
}

// Listing all programs' handles needs undocumented calls, which security products treat as an attack.
std::optional<std::string> holderOf(const std::string& /*port*/) { return std::nullopt; }

fs::path shownInPlaceOf(const fs::path& folder) {
  std::array<wchar_t, MAX_PATH> local{};
  if (FAILED(SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, local.data()))) return {};
  const fs::path shown = fs::path(local.data()) / L"VirtualStore" / folder.relative_path();
  std::error_code error;
  return fs::is_directory(shown, error) ? shown : fs::path();
}

void startCore() {
  startComponent();
  moduleState().createObject = &embedding::findRegistered;
}

ObjectPtr createComponent(const std::string& className) {
  return embedding::createRegistered(fromUtf8(std::string(kTypeLibraryName) + "." + className));
}

ObjectPtr createFromFolder(const fs::path& folder, const std::string& className) {
  const auto classes = publicClasses();
  const auto found =
      std::ranges::find_if(classes, [&](const PublicClass& each) { return each.describe().name() == className; });
  return embedding::createFrom(folder / "MirvaneEFT.dll", found->classId);
}

std::unique_ptr<WindowWatch> watchWindows(const char* className) { return std::make_unique<WindowsWatch>(className); }

}  // namespace mirvane::check
