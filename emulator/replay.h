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

/// A text is no flight record, or nothing can be played out of it. The text tells why.
struct ReplayError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Plays the register's part out of a flight record (recorder/record_line.h): the same till, run again, sees what it
/// saw then.
///
/// What the till sends is compared with the record, frame by frame and control byte by control byte, however it is cut
/// into pieces; secrets count as equal. When it has sent what stands before an answer, the answer follows after the
/// time that it took then. Where the line broke it vanishes, and comes back when it was found again. Times at which the
/// till was idle are not waited for.
class Replay {
 public:
  enum class End {
    kAsRecorded,
    kDifferent,  ///< the till sent something else, or not all
    kCut,        ///< as recorded, but the record is not whole: nothing is known of what came then
  };

  /// Throws ReplayError.
  explicit Replay(std::string_view record);

  /// Takes bytes of the till, in pieces of any size, and answers them through `outlet`. A till that goes on behind the
  /// end of a whole record is different.
  void feed(std::string_view bytes, Outlet& outlet);
  /// The till is not coming any more: what it has not sent is a difference.
  void stop();

  /// How it ended; nothing as long as the till is to send more.
  std::optional<End> end() const { return end_; }
  /// The end for whoever started the replay, with the record's lines. It ended.
  const std::string& report() const { return report_; }
  /// Milliseconds until the last of what was sent to the outlet leaves, counted from when it was sent.
  std::uint32_t lastDelay() const { return lastDelay_; }

  struct Step {
    enum class Kind { kSent, kReceived, kAway };
    Kind kind;
    /// Of the record, from 1.
    std::size_t line;
    std::string bytes;
    /// Milliseconds after what was sent before, and for how many more the line is away.
    std::uint32_t delay = 0, length = 0;
  };

 private:
  void take(const std::string& unit, Outlet& outlet);
  void differ(std::string_view now);
  void finish(End end, std::string report);

  std::vector<Step> steps_;
  std::size_t next_ = 0;
  std::size_t lastLine_ = 0;
  /// Why the record is not whole, if it is not.
  std::string cut_;
  std::string pending_;
  recorder::Secrets secrets_;
  std::optional<End> end_;
  std::string report_;
  std::uint32_t lastDelay_ = 0;
};

}  // namespace mirvane::emulator
