#include "check/child.h"

#include <chrono>
#include <thread>

namespace mirvane::check {
namespace {

using Time = std::chrono::steady_clock;

Time::time_point after(double seconds) {
  return Time::now() + std::chrono::duration_cast<Time::duration>(std::chrono::duration<double>(seconds));
}

void pause() { std::this_thread::sleep_for(std::chrono::milliseconds(20)); }

}  // namespace

std::optional<std::string> Child::outputWithin(double seconds) {
  for (const auto deadline = after(seconds); Time::now() < deadline; pause()) {
    if (!take()) return output_;
  }
  return std::nullopt;
}

std::optional<std::string> Child::lineWithin(double seconds) {
  for (const auto deadline = after(seconds); Time::now() < deadline; pause()) {
    const bool goesOn = take();
    if (output_.find('\n') != std::string::npos) return output_;
    if (!goesOn) break;
  }
  return std::nullopt;
}

}  // namespace mirvane::check
