#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace mirvane {

using Strings = std::vector<std::string>;

inline Strings split(const std::string& text, char separator = '/') {
  Strings parts;
  std::istringstream input(text);
  for (std::string part; std::getline(input, part, separator);) parts.push_back(part);
  return parts;
}

}  // namespace mirvane
