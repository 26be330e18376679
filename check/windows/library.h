#pragma once

#include <filesystem>
#include <string>

namespace mirvane::check {

/// The bitness of programs that a program file or library is for: 32 or 64; 0 if neither.
int bitsOf(const std::filesystem::path& file);

/// "1.0.0"; "?" if the file has no version.
std::string versionOf(const std::filesystem::path& file);

bool isSystemOf64Bits();

/// The MirvaneEFT.dll of this bitness beside this program or in the folders of its release; empty if there is none.
std::filesystem::path libraryOfPackage(int bits);

/// The regsvr32 for libraries of this bitness.
std::filesystem::path registrarOf(int bits);

}  // namespace mirvane::check
