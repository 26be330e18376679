#include "service/program/service_manager.h"

namespace mirvane::service {

std::optional<int> runManaged(const std::function<int(const Manager&)>& /*serve*/) { return std::nullopt; }

std::filesystem::path servicesFolder() { return "/var/lib/mirvane-service"; }

void makeFolder(const std::filesystem::path& /*folder*/) {}

void install(const std::string& name, const std::vector<std::string>& /*arguments*/,
             const std::vector<std::filesystem::path>& /*folders*/) {
  throw ManagerError("on Linux systemd does this: systemctl enable --now mirvane-service@" + name, 2);
}

void uninstall(const std::string& name) {
  throw ManagerError("on Linux systemd does this: systemctl disable --now mirvane-service@" + name, 2);
}

}  // namespace mirvane::service
