// Waits for a window and prints its title, the texts of its controls and, when it stays above all windows, "topmost".
// box-text [CLASS ID...]: without arguments it is a message box and its text.

#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

std::string utf8(HWND window) {
  wchar_t text[1000];
  char bytes[4000] = {};
  const int length = static_cast<int>(SendMessageW(window, WM_GETTEXT, 1000, reinterpret_cast<LPARAM>(text)));
  WideCharToMultiByte(CP_UTF8, 0, text, length, bytes, sizeof bytes - 1, nullptr, nullptr);
  return bytes;
}

}  // namespace

int main(int count, char** arguments) {
  std::vector<std::string> words(arguments + 1, arguments + count);
  if (words.empty()) words = {"#32770", "65535"};
  for (int tries = 0; tries < 200; ++tries, Sleep(100)) {
    const HWND box = FindWindowA(words[0].c_str(), nullptr);
    if (box == nullptr || IsWindowVisible(box) == FALSE) continue;
    std::string line = utf8(box);
    for (std::size_t i = 1; i < words.size(); ++i) line += "|" + utf8(GetDlgItem(box, std::stoi(words[i])));
    const bool topmost = (GetWindowLongW(box, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0;
    std::printf("%s|%s\n", line.c_str(), topmost ? "topmost" : "");
    return 0;
  }
  return 1;
}
