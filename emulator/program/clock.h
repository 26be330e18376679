#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>

#include "platform/ports.h"

namespace mirvane::emulator {

/// "2026-11-22T09:30:00"
std::string isoTime(const platform::LocalTime& time);

/// The register's clock: this machine's, some seconds ahead of it, or stopped.
class StationClock {
 public:
  /// How many seconds it is ahead of this machine's clock while it runs.
  std::int64_t offset = 0;

  platform::LocalTime time() const;
  bool runs() const { return !stopped_; }
  /// Stops it, or makes it continue from where it is.
  void run(bool runs);
  /// Sets it to this many seconds ahead of this machine's clock.
  void setOffset(std::int64_t seconds);
  /// Sets it to a time in isoTime's format; false if `text` is not one.
  bool set(const std::string& text);

 private:
  std::time_t now() const;

  std::optional<std::time_t> stopped_;
};

}  // namespace mirvane::emulator
