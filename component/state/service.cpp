#include "state/service.h"

#include <algorithm>

#include "state/module_state.h"

namespace mirvane {
namespace {

// The system reports a window that has not responded for five seconds.
constexpr double kPatience = 2;
constexpr double kServiceEvery = 0.25;

platform::Clock& theClock() { return moduleState().platform->clock; }

}  // namespace

bool isServiceDue() {
  double& due = moduleState().call.serviceDue;
  const double now = theClock().elapsed();
  if (due == 0) due = now + kPatience;
  if (now < due) return false;
  due = now + kServiceEvery;
  return true;
}

void serveWindows() {
  if (isServiceDue()) moduleState().platform->screen.serveWindows();
}

void pause(std::uint32_t milliseconds) {
  constexpr std::uint32_t kLongest = 100;
  while (milliseconds > 0) {
    const std::uint32_t piece = std::min(milliseconds, kLongest);
    theClock().sleep(piece);
    serveWindows();
    milliseconds -= piece;
  }
}

}  // namespace mirvane
