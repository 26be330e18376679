#pragma once

#include "http/assets.h"

namespace mirvane::emulator {

using http::Asset;

/// The one with `path`, such as "/paper.ttf"; none when there is no such file.
const Asset* findAsset(std::string_view path);

}  // namespace mirvane::emulator
