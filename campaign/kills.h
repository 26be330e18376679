#pragma once

#include <string>

namespace mirvane::campaign {

/// A till that saves what it does is killed at every moment, and hit by every fault at every command; the table of how
/// its answers, at once and at its next start, agree with what the register booked.
struct AnswersTable {
  std::string text;
  /// Answers that were wrong, crashes and hangs.
  long failures = 0;
  long states = 0;
};
/// `shareOnly`: a few of them.
AnswersTable proveAnswers(bool shareOnly);

}  // namespace mirvane::campaign
