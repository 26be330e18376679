#pragma once

#include <string_view>

namespace mirvane::http {

/// A file of a page, built into the program. embed.cmake writes each program's findAsset, which the program's own
/// header declares.
struct Asset {
  std::string_view path, type, bytes;
};

}  // namespace mirvane::http
