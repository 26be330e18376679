#include "http/log_file.h"

#include <fstream>

namespace mirvane {

void addToLog(const std::filesystem::path& file, std::string_view lines, std::uintmax_t most) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(file, error);
  auto mode = std::ios::binary | std::ios::app;
  if (!error && size + lines.size() > most) {
    std::filesystem::path old = file;
    std::filesystem::rename(file, old += ".old", error);
    // Whoever reads the old one may hold it; the limit holds all the same.
    if (error) mode = std::ios::binary | std::ios::trunc;
  }
  std::ofstream(file, mode) << lines;
}

}  // namespace mirvane
