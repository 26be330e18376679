#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

// What the program asks of the system it runs on, beside its loop.
namespace mirvane {

/// The program's arguments in UTF-8, without its own name.
std::vector<std::string> commandLine(int count, char** arguments);
/// The file that `utf8` names.
inline std::filesystem::path pathOf(const std::string& utf8) { return std::u8string(utf8.begin(), utf8.end()); }
inline std::string utf8Of(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}
/// Has the console show UTF-8 and not stop the program for a click into it, until the program ends; and has the program
/// outlive whoever read its output.
void prepareConsole();
/// Writes to standard output, past the library's own stream, whose lock a write that nobody reads would keep. What
/// cannot be written is lost.
void writeOut(std::string_view bytes);
/// Shows the page to whoever started the program with a double click, where there is such a thing.
void openBrowser(const std::string& url);
/// Keeps a console window that would close with the program until Enter is pressed.
void keepConsole();
/// Whether a port may be opened in spite of connections that linger there from an earlier run. Where it may, a port
/// that another program listens at is refused all the same.
bool mayReusePorts();

}  // namespace mirvane
