#pragma once

#include <string_view>

namespace mirvane::emulator {

/// A file of the page, inside the program.
struct Asset {
  std::string_view path, type, bytes;
};

/// The one with `path`, such as "/paper.ttf"; none when there is no such file.
const Asset* findAsset(std::string_view path);

}  // namespace mirvane::emulator
