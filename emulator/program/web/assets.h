#pragma once

#include "http/assets.h"

namespace mirvane::emulator {

using http::Asset;

/// The file with this `path`, such as "/paper.ttf"; null if there is none.
const Asset* findAsset(std::string_view path);

}  // namespace mirvane::emulator
