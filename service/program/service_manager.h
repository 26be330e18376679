#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

// What the system offers to programs that run as its services.
namespace mirvane::service {

/// The system refuses; the program ends with `code`.
struct ManagerError : std::runtime_error {
  ManagerError(const std::string& what, int codeNow) : runtime_error(what), code(codeNow) {}
  const int code;
};

/// What a service tells the service manager.
struct Manager {
  /// That it serves.
  std::function<void()> ready = [] {};
  /// That it has ended, for one that does not return.
  std::function<void()> ended = [] {};
};

/// Runs `serve` when the service manager has started this process, and returns its exit code. Nothing in a console.
std::optional<int> runManaged(const std::function<int(const Manager&)>& serve);

/// Where the databases of services are.
std::filesystem::path servicesFolder();
/// Makes a folder for services and administrators alone. One that is there keeps its permissions, but for the one
/// above.
void makeFolder(const std::filesystem::path& folder);

/// Has the system run this program with these arguments, now and whenever it starts, by an account of few rights. Makes
/// the folders first.
void install(const std::string& name, const std::vector<std::string>& arguments,
             const std::vector<std::filesystem::path>& folders);
/// Stops it first.
void uninstall(const std::string& name);

}  // namespace mirvane::service
