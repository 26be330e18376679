#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>

#include "platform/ports.h"

namespace mirvane::emulator {

/// "2026-11-22T09:30:00"
std::string isoTime(const platform::LocalTime& time);

/// The register's clock: this machine's, some seconds ahead of it, or standing still.
class StationClock {
 public:
  /// Seconds by which it is ahead of this machine's when it runs.
  std::int64_t offset = 0;

  platform::LocalTime time() const;
  bool runs() const { return !stopped_; }
  /// Stops it, or has it go on from where it stands.
  void run(bool runs);
  /// Sets it to so many seconds ahead of this machine's clock.
  void setOffset(std::int64_t seconds);
  /// Sets it to a time as isoTime writes it. False when `text` is none.
  bool set(const std::string& text);

 private:
  std::time_t now() const;

  std::optional<std::time_t> stopped_;
};

}  // namespace mirvane::emulator
