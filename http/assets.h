#pragma once

#include <string_view>

namespace mirvane::http {

/// A file of a page, inside the program. embed.cmake writes a program's findAsset, which its own header declares.
struct Asset {
  std::string_view path, type, bytes;
};

}  // namespace mirvane::http
