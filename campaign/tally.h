#pragma once

#include <array>
#include <string_view>

namespace mirvane::campaign {

/// What is counted, in the order of the table's columns.
enum Column {
  kRuns,
  kToldDone,     // calls told that it is done, and it is not
  kToldFailed,   // calls told that it failed, and it is done
  kToldUnknown,  // those of them that were told "no answer"
  kBookedTwice,
  kChargedTwice,
  kJournalIncomplete,  // the day closed, its journal not on the disk
  kWaits,              // the call still repeats after minutes: a serial line by its contract
  kHang,
  kCrash,
  kColumns
};

constexpr std::array<std::string_view, kColumns> kColumnNames = {"runs",
                                                                 "told done, not done",
                                                                 "told failed, done",
                                                                 "of these \"no answer\"",
                                                                 "booked twice",
                                                                 "charged twice",
                                                                 "journal incomplete",
                                                                 "waits without end",
                                                                 "hang",
                                                                 "crash"};

using Tally = std::array<long, kColumns>;

inline void add(Tally& sum, const Tally& part) {
  for (std::size_t i = 0; i < sum.size(); ++i) sum[i] += part[i];
}

}  // namespace mirvane::campaign
