// How long a day's journal takes: journal-bench PORT...
// The registers on the ports hold journals of different sizes. The last column is what a journal that took the same
// time a byte as the first one would make 1.00.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "bench/till.h"
#include "protocol/wire.h"
#include "text/code_page.h"

namespace mirvane::bench {

void fail(const std::string& what) {
  std::fprintf(stderr, "journal-bench: %s\n", what.c_str());
  std::exit(1);
}

namespace {

using Time = std::chrono::steady_clock;

// The bytes of the saved files; they are removed.
double takeSaved() {
  double bytes = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator("c:/bbox")) {
    if (entry.is_regular_file()) bytes += static_cast<double>(entry.file_size());
  }
  std::filesystem::remove_all("c:/bbox");
  return bytes;
}

}  // namespace
}  // namespace mirvane::bench

int main(int argc, char** argv) {
  using namespace mirvane::bench;
  if (argc < 2) fail("usage: journal-bench PORT...");
  Till till;
  double first = 0;
  for (int i = 1; i < argc; ++i) {
    till.connect(mirvane::fromUtf8(argv[i]));
    const auto start = Time::now();
    till.readJournal();
    const double seconds = std::chrono::duration<double>(Time::now() - start).count();
    till.disconnect();
    const double bytes = takeSaved();
    if (first == 0) first = seconds / bytes;
    constexpr double kLine = mirvane::wire::kBaud / 10.0;  // ten bits a byte
    std::printf(
        "  %9.0f bytes  %7.2f s  %7.0f bytes/s  %5.2f times the line's own  time a byte %.2f  memory %.0f MiB\n", bytes,
        seconds, bytes / seconds, bytes / seconds / kLine, seconds / bytes / first,
        static_cast<double>(memory()) / (1 << 20));
  }
  return 0;
}
