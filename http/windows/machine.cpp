// clang-format off
#include <windows.h>
#include <shellapi.h>  // which does not include the former itself
// clang-format on

#include "http/machine.h"

#include <cstdlib>

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

void prepareConsole() { SetConsoleOutputCP(CP_UTF8); }

void writeOut(std::string_view bytes) {
  const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
  for (DWORD count = 0; !bytes.empty(); bytes.remove_prefix(count)) {
    if (!WriteFile(output, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) || count == 0) return;
  }
}

void openBrowser(const std::string& url) {
  ShellExecuteA(nullptr, "open", url.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
}

void keepConsole() { std::system("pause"); }

// Two programs could listen at one port then.
bool mayReusePorts() { return false; }

}  // namespace mirvane
