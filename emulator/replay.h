#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "emulator/line.h"
#include "recorder/secrets.h"

namespace mirvane::emulator {

/// A text is not a flight record, or has nothing to replay. The text says why.
struct ReplayError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Replays the register's side of a flight record (recorder/record_line.h): the same till, run again, sees what it saw
/// then.
///
/// What the till sends is compared with the record, frame by frame and control byte by control byte, however it is
/// split; secrets count as equal. When the till has sent what precedes an answer, the answer follows after the time it
/// took then. Where the line broke it disappears, and it comes back at the recorded moment. Pauses of the till are
/// skipped.
class Replay {
 public:
  enum class End {
    kAsRecorded,
    kDifferent,  ///< the till sent something else, or not everything
    kCut,        ///< as recorded, but the record is incomplete: what followed is unknown
  };

  /// Throws ReplayError.
  explicit Replay(std::string_view record);

  /// Receives bytes of the till, in pieces of any size, and answers through `outlet`. A till that continues after the
  /// end of a complete record is different.
  void feed(std::string_view bytes, Outlet& outlet);
  /// The till has gone: what it has not sent is a difference.
  void stop();

  /// How the replay ended; nothing while the till still has to send something.
  std::optional<End> end() const { return end_; }
  /// The outcome for the user, with line numbers of the record. Only after the end.
  const std::string& report() const { return report_; }
  /// Milliseconds until the last answer leaves, counted from when it was sent to the outlet.
  std::uint32_t lastDelay() const { return lastDelay_; }

  struct Step {
    enum class Kind { kSent, kReceived, kAway };
    Kind kind;
    /// Line of the record, from 1.
    std::size_t line;
    std::string bytes;
    /// Milliseconds after the previous answer; for how many more the line is unplugged.
    std::uint32_t delay = 0, length = 0;
  };

 private:
  void take(const std::string& unit, Outlet& outlet);
  void differ(std::string_view now);
  void finish(End end, std::string report);

  std::vector<Step> steps_;
  std::size_t next_ = 0;
  std::size_t lastLine_ = 0;
  /// Why the record is incomplete; empty if it is complete.
  std::string cut_;
  std::string pending_;
  recorder::Secrets secrets_;
  std::optional<End> end_;
  std::string report_;
  std::uint32_t lastDelay_ = 0;
};

}  // namespace mirvane::emulator
