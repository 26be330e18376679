#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "check/findings.h"

namespace mirvane::check {

/// Findings about this machine, the worst first. Adds the folders of registered components to `folders`. A folder
/// already there is that of a component without registration, which is checked instead.
Findings examineMachine(std::vector<std::filesystem::path>& folders);

/// Checks the component's message catalogue in its folder.
void examineCatalogue(Findings& findings, const std::filesystem::path& folder);

/// This machine's date and time: "21-11-2026 20:33:37".
std::string now();

/// "COM1, COM3 (…)"; empty if there are none.
std::string listOfPorts();

}  // namespace mirvane::check
