#pragma once

#include "http/assets.h"

namespace mirvane::service {

/// One of the program's built-in files, by path; null if there is none.
const http::Asset* findAsset(std::string_view path);

}  // namespace mirvane::service
