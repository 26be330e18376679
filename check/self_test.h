#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "check/findings.h"

namespace mirvane::check {

/// Starts an emulator for each component of this machine, the 32-bit and the 64-bit one, and has a copy of this program
/// of that kind play a day with it. Headings and what was found, a finding a step. `emulator` is the program; empty:
/// the one that lies beside this program or in the folder "emulator" of its package.
std::vector<std::pair<std::string, Findings>> testItself(const std::string& emulator);

/// One of those days: through the component that programs of this program's kind find, at the register at `address`.
Findings playDay(const std::string& address);

/// Creates the facade as a program does: as it is registered, or out of `folder` where that is not empty.
Findings tryComponent(const std::filesystem::path& folder);

}  // namespace mirvane::check
