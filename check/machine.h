#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "automation/object.h"
#include "check/findings.h"

// What this program asks of the machine beyond what the component asks of it. Texts are UTF-8.
namespace mirvane::check {

/// The program's arguments, without its own name.
std::vector<std::string> commandLine(int count, char** arguments);
/// Writes to the standard output: letters as they are where that is a console, UTF-8 into a file or a pipe.
void print(const std::string& text);
/// A line that the user types, without its end; nothing when there is no more.
std::optional<std::string> readLine();
/// Whether the console closes with the program, as after a double click.
bool hasOwnConsole();
/// Where the user keeps what is to be found at once: the desktop.
std::filesystem::path desktop();
/// Whether the user's own language is Greek.
bool systemSpeaksGreek();
/// The system, its version, and who is logged on, for a report.
std::string describeSystem();

std::filesystem::path ownProgram();
/// A file as the component names it, with "\\" between folders.
std::filesystem::path pathOf(const std::string& name);
std::string nameOf(const std::filesystem::path& path);
/// What a program of this machine is called: NAME or NAME.exe.
std::string programName(const std::string& name);

struct SerialPortName {
  std::string name;         ///< as `Connect_` takes it
  std::string description;  ///< what the system calls it; may be empty
};
std::vector<SerialPortName> serialPorts();

/// Which program has the port open, with its number; nothing where no documented call tells.
std::optional<std::string> holderOf(const std::string& port);

/// What is to be said about the component's registration and its files. Folders of a component that a program would
/// find are added to `folders`.
void examineComponent(Findings& findings, std::vector<std::filesystem::path>& folders);
/// The same of a component that its program finds in this folder, without registration.
void examineFolder(Findings& findings, const std::filesystem::path& folder);
/// The folder that the system shows this user's older programs in place of one where they may not write; empty when
/// there is none.
std::filesystem::path shownInPlaceOf(const std::filesystem::path& folder);

/// Puts the component's core in this program together, for what it is asked itself.
void startCore();

/// A new object of a public class, as a till's program gets it: through its registration, or natively from the core.
/// Raises runtime_error with the reason where it cannot be had.
ObjectPtr createComponent(const std::string& className);
/// The same out of the component in this folder, registered or not.
ObjectPtr createFromFolder(const std::filesystem::path& folder, const std::string& className);

/// What the programs of `bits` bits are, which try the component that is registered for such.
struct Twin {
  int bits;
  std::filesystem::path program;  ///< empty when it does not lie beside this one
};
/// This program, and the one for the other programs of this machine where there are such.
std::vector<Twin> twins();

/// Looks out for a window of this process that a component shows.
class WindowWatch {
 public:
  virtual ~WindowWatch() = default;
  /// Whether one was seen and none is there now.
  virtual bool hasComeAndGone() = 0;
};
/// Null where the component shows no windows.
std::unique_ptr<WindowWatch> watchWindows(const char* className);

}  // namespace mirvane::check
