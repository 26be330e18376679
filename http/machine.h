#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

// What the program needs from the system, apart from its loop.
namespace mirvane {

/// The program's arguments in UTF-8, without its own name.
std::vector<std::string> commandLine(int count, char** arguments);
/// The file that `utf8` names.
inline std::filesystem::path pathOf(const std::string& utf8) { return std::u8string(utf8.begin(), utf8.end()); }
inline std::string utf8Of(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}
/// Sets the console to UTF-8 and keeps a click into it from stopping the program, until the program ends; and lets the
/// program outlive the reader of its output.
void prepareConsole();
/// Writes to standard output without the library's stream, whose lock a blocked write would keep. What cannot be
/// written is lost.
void writeOut(std::string_view bytes);
/// Opens the page for a user who double-clicked the program, if the system supports that.
void openBrowser(const std::string& url);
/// If the console window would close with the program, waits until Enter is pressed.
void keepConsole();
/// Whether a port may be opened while connections of an earlier run linger there. Even then a port at which another
/// program listens is refused.
bool mayReusePorts();

}  // namespace mirvane
