#pragma once

#include <filesystem>
#include <string>

namespace mirvane::check {

/// The bits of the programs that a program file or library is for: 32 or 64; 0 where it is neither.
int bitsOf(const std::filesystem::path& file);

/// "1.0.0"; "?" where the file does not tell.
std::string versionOf(const std::filesystem::path& file);

bool isSystemOf64Bits();

/// The MirvaneEFT.dll for such programs that lies beside this program or in the folders of its package; empty when
/// there is none.
std::filesystem::path libraryOfPackage(int bits);

/// The regsvr32 for libraries of so many bits.
std::filesystem::path registrarOf(int bits);

}  // namespace mirvane::check
