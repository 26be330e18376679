#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace mirvane::platform {

/// The environment of both floating-point units: precision, rounding, which exceptions are raised, and what has
/// happened so far. The C library's own calls know only one of the two units, or change what they keep.
class FloatingPoint {
 public:
  /// As it is now; afterwards it has to be set anew.
  FloatingPoint();

  void set() const;
  /// The usual one, which raises nothing.
  static void setUsual();

 private:
  static constexpr std::size_t kWords = 7;

  std::array<std::uint32_t, kWords> x87_{};
  std::uint32_t sse_ = 0;
};

/// While this lives the component computes in the usual environment. Programs set theirs up in their own way: with a
/// lower precision, or with exceptions that would end them where a comparison is merely false. They get it back as it
/// was. For the one thread whose turn it is.
class OwnFloatingPoint {
 public:
  OwnFloatingPoint();
  OwnFloatingPoint(const OwnFloatingPoint&) = delete;
  OwnFloatingPoint& operator=(const OwnFloatingPoint&) = delete;
  ~OwnFloatingPoint();

  /// Forgets those of calls that will never return.
  static void forget();

 private:
  std::size_t depth_;
};

/// While this lives the program's own code may run within a call of ours, in the environment that the program made the
/// call in. Does nothing outside of such a call.
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
