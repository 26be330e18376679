// Waits for a message box and prints its title, its text and, when it stays above all windows, "topmost".

#include <windows.h>

#include <cstdio>
#include <string>

namespace {

constexpr const wchar_t* kDialog = L"#32770";
constexpr int kTextId = 0xFFFF;

std::string utf8(HWND window) {
  wchar_t text[1000];
  char bytes[4000] = {};
  const int length = static_cast<int>(SendMessageW(window, WM_GETTEXT, 1000, reinterpret_cast<LPARAM>(text)));
  WideCharToMultiByte(CP_UTF8, 0, text, length, bytes, sizeof bytes - 1, nullptr, nullptr);
  return bytes;
}

}  // namespace

int main() {
  for (int tries = 0; tries < 200; ++tries, Sleep(100)) {
    const HWND box = FindWindowW(kDialog, nullptr);
    const HWND text = box == nullptr || IsWindowVisible(box) == FALSE ? nullptr : GetDlgItem(box, kTextId);
    if (text == nullptr) continue;
    const bool topmost = (GetWindowLongW(box, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0;
    std::printf("%s|%s|%s\n", utf8(box).c_str(), utf8(text).c_str(), topmost ? "topmost" : "");
    return 0;
  }
  return 1;
}
