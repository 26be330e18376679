#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "check/findings.h"

namespace mirvane::check {

/// What there is to say about this machine, the worst first. Folders where a registered component lies are added to
/// `folders`; one that is there already is that of a component without registration, which is then looked at instead.
Findings examineMachine(std::vector<std::filesystem::path>& folders);

/// The component's message catalogue in its folder.
void examineCatalogue(Findings& findings, const std::filesystem::path& folder);

/// This machine's date and time: "21-11-2026 20:33:37".
std::string now();

/// "COM1, COM3 (…)"; empty when there are none.
std::string listOfPorts();

}  // namespace mirvane::check
