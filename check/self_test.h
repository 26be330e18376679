#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "check/findings.h"

namespace mirvane::check {

/// Starts an emulator for each component of this machine, the 32-bit and the 64-bit one, and has a copy of this program
/// of the same bitness simulate a trading day with it. Returns headings and findings, one finding per step. `emulator`
/// is the program; if empty, the one beside this program or in the folder "emulator" of the release.
std::vector<std::pair<std::string, Findings>> testItself(const std::string& emulator);

/// One such day, with the component that programs of this bitness find, on the register at `address`.
Findings playDay(const std::string& address);

/// Creates the facade as a program does: through its registration, or from `folder` unless that is empty.
Findings tryComponent(const std::filesystem::path& folder);

}  // namespace mirvane::check
