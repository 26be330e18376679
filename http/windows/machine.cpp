// clang-format off
#include <windows.h>
#include <shellapi.h>  // which does not include the former itself
// clang-format on

#include "http/machine.h"

#include <array>
#include <cstdlib>
#include <iostream>

#include "text/code_page.h"

namespace mirvane {

std::vector<std::string> commandLine(int /*count*/, char** /*arguments*/) {
  int count = 0;
  wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) {
    const std::wstring_view word = words[i];
    arguments.push_back(toUtf8(Text(word.begin(), word.end())));
  }
  LocalFree(words);
  return arguments;
}

// A click would select text, and whoever writes waits until the selection ends. The console may be a shell's, which
// gets it back as it was.
void prepareConsole() {
  SetConsoleOutputCP(CP_UTF8);
  static DWORD before = 0;
  const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
  if (!GetConsoleMode(input, &before)) return;
  SetConsoleMode(input, (before | ENABLE_EXTENDED_FLAGS) & ~static_cast<DWORD>(ENABLE_QUICK_EDIT_MODE));
  std::atexit([] { SetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), before | ENABLE_EXTENDED_FLAGS); });
}

void writeOut(std::string_view bytes) {
  const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
  for (DWORD count = 0; !bytes.empty(); bytes.remove_prefix(count)) {
    if (!WriteFile(output, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) || count == 0) return;
  }
}

void openBrowser(const std::string& url) {
  ShellExecuteA(nullptr, "open", url.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
}

void keepConsole() {
  std::array<DWORD, 2> processes{};
  if (GetConsoleProcessList(processes.data(), processes.size()) != 1) return;
  std::cerr << "Press Enter to close this window." << std::endl;
  std::cin.get();
}

// Two programs could listen at one port then.
bool mayReusePorts() { return false; }

}  // namespace mirvane
