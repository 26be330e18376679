#pragma once

#include "http/assets.h"

namespace mirvane::service {

/// A file of the program's own, by its path; null when there is none.
const http::Asset* findAsset(std::string_view path);

}  // namespace mirvane::service
