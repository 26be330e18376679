#include "check/machine.h"

#include <dirent.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "check/doctor.h"
#include "check/texts.h"
#include "component/component.h"

namespace mirvane::check {
namespace {

namespace fs = std::filesystem;

std::string firstLineOf(const fs::path& file) {
  std::ifstream stream(file);
  std::string line;
  std::getline(stream, line, '\0');
  return line.substr(0, line.find('\n'));
}

}  // namespace

std::vector<std::string> commandLine(int count, char** arguments) { return {arguments + 1, arguments + count}; }

void print(const std::string& text) { std::cout << text << std::flush; }

std::optional<std::string> readLine() {
  std::string line;
  if (!std::getline(std::cin, line)) return std::nullopt;
  return line;
}

bool hasOwnConsole() { return false; }

fs::path desktop() {
  const char* const home = std::getenv("HOME");
  const fs::path folder = home == nullptr ? fs::current_path() : fs::path(home);
  std::error_code error;
  return fs::is_directory(folder / "Desktop", error) ? folder / "Desktop" : folder;
}

bool systemSpeaksGreek() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    if (const char* const value = std::getenv(name); value != nullptr && *value != '\0') {
      return std::string_view(value).starts_with("el");
    }
  }
  return false;
}

std::string describeSystem() {
  utsname system{};
  uname(&system);
  return std::string(system.sysname) + " " + system.release + ", " + system.machine + ", user " +
         std::to_string(getuid());
}

fs::path ownProgram() { return fs::read_symlink("/proc/self/exe"); }

fs::path pathOf(const std::string& name) {
  std::string path = name;
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

std::string nameOf(const fs::path& path) { return path.string(); }

std::string programName(const std::string& name) { return name; }

// Those for which the kernel has found hardware.
std::vector<SerialPortName> serialPorts() {
  std::vector<SerialPortName> ports;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator("/sys/class/tty", error)) {
    const std::string name = entry.path().filename();
    const bool isThere = fs::exists(entry.path() / "device", error) && firstLineOf(entry.path() / "type") != "0";
    if (isThere) ports.push_back({"/dev/" + name, {}});
  }
  std::sort(ports.begin(), ports.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
  return ports;
}

std::optional<std::string> holderOf(const std::string& port) {
  std::error_code error;
  for (const fs::directory_entry& process : fs::directory_iterator("/proc", error)) {
    const std::string id = process.path().filename();
    if (id.find_first_not_of("0123456789") != std::string::npos || id == std::to_string(getpid())) continue;
    for (const fs::directory_entry& file : fs::directory_iterator(process.path() / "fd", error)) {
      if (fs::equivalent(file.path(), port, error)) return firstLineOf(process.path() / "comm") + " (" + id + ")";
    }
  }
  return std::nullopt;
}

void examineComponent(Findings& findings, std::vector<fs::path>& folders) {
  findings.note(say(texts::kInThisProgram));
  folders.push_back(ownProgram().parent_path());
  examineCatalogue(findings, folders.back());
}

void examineFolder(Findings& findings, const fs::path& folder) {
  findings.note(say(texts::kInThisProgram));
  examineCatalogue(findings, folder);
}

fs::path shownInPlaceOf(const fs::path& /*folder*/) { return {}; }

void startCore() { startComponent(); }

ObjectPtr createComponent(const std::string& className) {
  for (const PublicClass& each : publicClasses()) {
    if (each.describe().name() == className) return each.create();
  }
  throw std::runtime_error(className);
}

ObjectPtr createFromFolder(const fs::path& /*folder*/, const std::string& className) {
  return createComponent(className);
}

std::vector<Twin> twins() { return {{static_cast<int>(8 * sizeof(void*)), ownProgram()}}; }

std::unique_ptr<WindowWatch> watchWindows(const char* /*className*/) { return nullptr; }

}  // namespace mirvane::check
