#pragma once

#include <array>
#include <string>
#include <string_view>

namespace mirvane::campaign {

/// What is counted, in the order of the tables' columns; from kFirstFinding on, what is found wrong.
enum Column {
  kRuns,
  kVisits,     // calls from within others
  kCommitted,  // answers of a till that saves
  kNotCommitted,
  kUnknownComment,  // of a printed comment
  kUnknown,
  kToldDone,     // calls told that it is done, and it is not
  kToldFailed,   // calls told that it failed, and it is done
  kToldUnknown,  // those of them that were told "no answer"
  kBookedTwice,
  kChargedTwice,
  kJournalIncomplete,  // the day closed, its journal not on the disk
  kLetIn,              // calls from within that were not refused
  kWrong,              // answers of a till that saves
  kDisturbed,          // a call was told, or the register booked, something else than without the calls from within
  kWaits,              // the call still repeats after minutes: a serial line by its contract
  kHang,
  kCrash,
  kColumns
};
constexpr std::size_t kFirstFinding = kToldDone;

constexpr std::array<std::string_view, kColumns> kColumnNames = {"runs",
                                                                 "calls from within",
                                                                 "committed",
                                                                 "not committed",
                                                                 "unknown: a comment",
                                                                 "unknown: other",
                                                                 "reported done, not done",
                                                                 "reported failed, done",
                                                                 "of these \"no answer\"",
                                                                 "booked twice",
                                                                 "charged twice",
                                                                 "journal incomplete",
                                                                 "let in",
                                                                 "wrong",
                                                                 "disturbed",
                                                                 "waits without end",
                                                                 "hang",
                                                                 "crash"};

using Tally = std::array<long, kColumns>;

inline void add(Tally& sum, const Tally& part) {
  for (std::size_t i = 0; i < sum.size(); ++i) sum[i] += part[i];
}

/// What was found, in words; empty when nothing was.
inline std::string findings(const Tally& tally) {
  std::string text;
  for (std::size_t i = kFirstFinding; i < kColumns; ++i) {
    if (tally[i] == 0) continue;
    text += (text.empty() ? "" : ", ") + std::string(kColumnNames[i]) + " " + std::to_string(tally[i]);
  }
  return text;
}

}  // namespace mirvane::campaign
