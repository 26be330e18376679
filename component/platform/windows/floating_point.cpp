#include "platform/windows/floating_point.h"

#include <vector>

namespace mirvane::platform {
namespace {

// The program's floating-point states, from the outermost call to the innermost. Not on the stack, because a call may
// end without a return.
std::vector<FloatingPoint>& hosts() {
  static auto& all = *new std::vector<FloatingPoint>;
  return all;
}

}  // namespace

FloatingPoint::FloatingPoint() { asm volatile("fnstenv %0\n\tstmxcsr %1" : "=m"(x87_), "=m"(sse_)); }

void FloatingPoint::set() const { asm volatile("fldenv %0\n\tldmxcsr %1" : : "m"(x87_), "m"(sse_)); }

void FloatingPoint::setUsual() {
  constexpr std::uint32_t kNothingRaised = 0x1F80;
  asm volatile("fninit\n\tldmxcsr %0" : : "m"(kNothingRaised));
}

OwnFloatingPoint::OwnFloatingPoint() : depth_(hosts().size()) {
  hosts().emplace_back();
  FloatingPoint::setUsual();
}

OwnFloatingPoint::~OwnFloatingPoint() {
  const FloatingPoint host = hosts()[depth_];
  hosts().resize(depth_);
  host.set();
}

void OwnFloatingPoint::forget() { hosts().clear(); }

HostFloatingPoint::HostFloatingPoint() { (hosts().empty() ? own_ : hosts().back()).set(); }

}  // namespace mirvane::platform
