// Files of any kind that the emulator is told to remember things in. An input is either a file, behind a "F", or lines
// "NAME=VALUE" that are written over the rows of a good one; a value is a number, or a text behind a quote.

#include <sqlite3.h>
#include <unistd.h>

#include <charconv>
#include <filesystem>
#include <fstream>
#include <optional>

#include "emulator/program/web/api.h"
#include "fuzz/machine.h"

namespace mirvane::fuzz {
namespace {

using emulator::Station;

std::string folder() {
  static const std::string kFolder = [] {
    const bool hasMemory = std::filesystem::is_directory("/dev/shm");
    std::string name = (hasMemory ? "/dev/shm" : std::filesystem::temp_directory_path().string()) + "/mirvane-fuzz-" +
                       std::to_string(getpid());
    std::filesystem::create_directories(name);
    return name;
  }();
  return kFolder;
}

void sell(Station& station) {
  for (const char* command : {"3/S//A///1.000/10.00/1/24.00/1/", "4/1/1///1.00/0/0/0/0/0/", "5/1///0.00///", "O/1/",
                              "#/", "3/S//B/c//2.500/3.33/2/13.00/2/", "5/1///1.00///"}) {
    station.execute(command);
  }
}

const std::string& goodFile() {
  static const std::string kBytes = [] {
    const std::string path = folder() + "/good";
    {
      Station station([](TextView) {});
      station.keepStateIn(path, true);
      sell(station);
    }
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
  }();
  return kBytes;
}

void write(const std::string& path, std::string_view bytes) {
  for (const char* rest : {"-wal", "-journal", "-shm"}) std::filesystem::remove(path + rest);
  std::ofstream(path, std::ios::binary | std::ios::trunc)
      .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

void writeOver(const std::string& path, std::string_view lines) {
  sqlite3* database = nullptr;
  sqlite3_open(path.c_str(), &database);
  sqlite3_exec(database, "PRAGMA synchronous = OFF; BEGIN", nullptr, nullptr, nullptr);
  while (!lines.empty()) {
    const std::string_view line = lines.substr(0, lines.find('\n'));
    lines.remove_prefix(std::min(line.size() + 1, lines.size()));
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) continue;
    const std::string_view value = line.substr(equals + 1);
    std::int64_t number = 0;
    std::from_chars(value.data(), value.data() + value.size(), number);
    sqlite3_stmt* row = nullptr;
    sqlite3_prepare_v2(database, "INSERT OR REPLACE INTO memory VALUES (?, ?)", -1, &row, nullptr);
    sqlite3_bind_text(row, 1, line.data(), static_cast<int>(equals), SQLITE_STATIC);
    if (value.starts_with('\'')) {
      sqlite3_bind_text(row, 2, value.data() + 1, static_cast<int>(value.size() - 1), SQLITE_STATIC);
    } else {
      sqlite3_bind_int64(row, 2, number);
    }
    sqlite3_step(row);
    sqlite3_finalize(row);
  }
  sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr);
  sqlite3_close(database);
}

/// What is taken over must be a register with which one can go on.
void use(Station& station) {
  http::Request request{"GET", "/api/v1/state", {}, {}, {}, false};
  emulator::answer(station, request);
  sell(station);
  for (const char* command : {"O/2/", "0/", "9/", "x/1/", "A/", "A/", "A/", "Q/", "Q/", "Q/", "Q/", "x/2/2", "x/9/"}) {
    station.execute(command);
  }
  request.path = "/api/v1/receipts";
  emulator::answer(station, request);
}

void run(std::string_view input) {
  const std::string path = folder() + "/state";
  if (input.starts_with('F')) {
    write(path, input.substr(1));
  } else {
    write(path, goodFile());
    writeOver(path, input);
  }
  std::optional<Station> station;
  station.emplace([](TextView) {});
  try {
    station->keepStateIn(path, false);
    use(*station);
  } catch (const emulator::StateError&) {
  }
}

}  // namespace
}  // namespace mirvane::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  mirvane::fuzz::run({reinterpret_cast<const char*>(data), size});
  return 0;
}
