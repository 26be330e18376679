#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace mirvane::platform {

/// The state of both floating-point units: precision, rounding, exceptions, and flags. The C library's own calls know
/// only one of the two units, or change what they save.
class FloatingPoint {
 public:
  /// Saves the present state; afterwards a state must be set again.
  FloatingPoint();

  void set() const;
  /// Sets the usual state, which raises no exceptions.
  static void setUsual();

 private:
  static constexpr std::size_t kWords = 7;

  std::array<std::uint32_t, kWords> x87_{};
  std::uint32_t sse_ = 0;
};

/// While this exists, the component computes in the usual state. Programs have states of their own: with a lower
/// precision, or with exceptions that would end them where a comparison is merely false. Their state is restored
/// exactly. For the one thread whose turn it is.
class OwnFloatingPoint {
 public:
  OwnFloatingPoint();
  OwnFloatingPoint(const OwnFloatingPoint&) = delete;
  OwnFloatingPoint& operator=(const OwnFloatingPoint&) = delete;
  ~OwnFloatingPoint();

  /// Forgets the states of calls that will never return.
  static void forget();

 private:
  std::size_t depth_;
};

/// While this exists, program code may run within one of our calls, in the state that the program made the call in.
/// Does nothing outside of such a call.
class HostFloatingPoint {
 public:
  HostFloatingPoint();
  HostFloatingPoint(const HostFloatingPoint&) = delete;
  HostFloatingPoint& operator=(const HostFloatingPoint&) = delete;
  ~HostFloatingPoint() { own_.set(); }

 private:
  FloatingPoint own_;
};

}  // namespace mirvane::platform
