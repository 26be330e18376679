#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "automation/object.h"
#include "check/findings.h"

// What this program needs from the machine beyond what the component needs. Texts are UTF-8.
namespace mirvane::check {

/// The program's arguments, without its own name.
std::vector<std::string> commandLine(int count, char** arguments);
/// Writes to standard output: Unicode to a console, UTF-8 to a file or a pipe.
void print(const std::string& text);
/// A line that the user types, without its end; nothing at the end of input.
std::optional<std::string> readLine();
/// Whether the console closes with the program, as after a double click.
bool hasOwnConsole();
/// The user's desktop.
std::filesystem::path desktop();
/// Whether the user's language is Greek.
bool systemSpeaksGreek();
/// The system, its version, and the logged-on user, for a report.
std::string describeSystem();

std::filesystem::path ownProgram();
/// The file with this component-style name ("\\" between folders).
std::filesystem::path pathOf(const std::string& name);
std::string nameOf(const std::filesystem::path& path);
/// File name of a program on this system: NAME or NAME.exe.
std::string programName(const std::string& name);

struct SerialPortName {
  std::string name;         ///< as passed to `Connect_`
  std::string description;  ///< the system's name for it; may be empty
};
std::vector<SerialPortName> serialPorts();

/// The program that has the port open, with its process id; nothing if no documented call reveals it.
std::optional<std::string> holderOf(const std::string& port);

/// Checks the component's registration and its files. Adds to `folders` those of the components that a program would
/// find.
void examineComponent(Findings& findings, std::vector<std::filesystem::path>& folders);
/// The same for a component that its program finds in this folder, without registration.
void examineFolder(Findings& findings, const std::filesystem::path& folder);
/// The folder that the system shows this user's older programs instead of one where they may not write; empty if there
/// is none.
std::filesystem::path shownInPlaceOf(const std::filesystem::path& folder);

/// Starts the component's core in this program, for questions of its own.
void startCore();

/// Creates an object of a public class as a till program does: through its registration, or natively from the core.
/// Raises runtime_error with the reason if that fails.
ObjectPtr createComponent(const std::string& className);
/// The same with the component in this folder, registered or not.
ObjectPtr createFromFolder(const std::filesystem::path& folder, const std::string& className);

/// A copy of this program for `bits`-bit programs, which tries the component registered for these.
struct Twin {
  int bits;
  std::filesystem::path program;  ///< empty if it is not beside this one
};
/// This program, and its copy for the other bitness if this machine runs such programs.
std::vector<Twin> twins();

/// Watches for a window that a component shows in this process.
class WindowWatch {
 public:
  virtual ~WindowWatch() = default;
  /// Whether a window was seen and is gone.
  virtual bool hasComeAndGone() = 0;
};
/// Null if the component shows no windows.
std::unique_ptr<WindowWatch> watchWindows(const char* className);

}  // namespace mirvane::check
