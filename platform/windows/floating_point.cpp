#include "platform/windows/floating_point.h"

#include <utility>

namespace mirvane::platform {

FloatingPoint::FloatingPoint() { asm volatile("fnstenv %0\n\tstmxcsr %1" : "=m"(x87_), "=m"(sse_)); }

void FloatingPoint::set() const { asm volatile("fldenv %0\n\tldmxcsr %1" : : "m"(x87_), "m"(sse_)); }

void FloatingPoint::setUsual() {
  constexpr std::uint32_t kNothingRaised = 0x1F80;
  asm volatile("fninit\n\tldmxcsr %0" : : "m"(kNothingRaised));
}

OwnFloatingPoint* OwnFloatingPoint::innermost = nullptr;

OwnFloatingPoint::OwnFloatingPoint() : outer_(std::exchange(innermost, this)) { FloatingPoint::setUsual(); }

OwnFloatingPoint::~OwnFloatingPoint() {
  innermost = outer_;
  hosts_.set();
}

HostFloatingPoint::HostFloatingPoint() {
  const OwnFloatingPoint* const call = OwnFloatingPoint::innermost;
  (call != nullptr ? call->hosts_ : own_).set();
}

}  // namespace mirvane::platform
