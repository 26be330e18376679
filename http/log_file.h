#pragma once

#include <filesystem>
#include <string_view>

namespace mirvane {

/// Adds lines to a file. A full one first becomes FILE.old, in the place of the one before. What the disk does not take
/// is lost.
void addToLog(const std::filesystem::path& file, std::string_view lines, std::uintmax_t most = 4 << 20);

}  // namespace mirvane
