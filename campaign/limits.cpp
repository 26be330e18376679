#include "campaign/limits.h"

#include <algorithm>

namespace mirvane::campaign {
namespace {

constexpr unsigned kSerial = 1, kFrame = 2, kEnq = 4;
constexpr unsigned kNetworks = kFrame | kEnq, kAllLines = kSerial | kNetworks;

struct Limit {
  std::string_view fault;
  unsigned lines;
};
// Of two the first counts. A rate is "% " and what is struck by it.
constexpr Limit kLimits[] = {
    // What comes twice, or late, has no number to be known by.
    {"till-frame duplicate", kAllLines},
    {"till-frame delayed", kNetworks},
    {"till-ack delayed", kNetworks},
    {"till-ack duplicate", kNetworks},
    // The register says what is not so.
    {"reply", kAllLines},
    {"code", kAllLines},
    // An answer has none either.
    {"duplicate", kSerial | kEnq},
    {"% duplicate 100", kNetworks},
    {"% delayed 1500", kNetworks},
    // The register takes the next equal command for a repetition, and a serial line has no question in between.
    {"till-ack lost", kSerial},
    {"till-ack noise", kSerial},
    {"till-ack noise-within", kSerial},
    {"% lost", kSerial | kEnq},
    // An ACK and then silence is a command that was taken.
    {"ack-only", kNetworks},
    {"silence", kEnq},
    {"lost", kEnq},
    {"unplug", kEnq},
    {"unplug-after", kEnq},
    {"till-frame lost", kEnq},
    {"till-frame cut", kEnq},
    {"till-frame noise-within", kEnq},
};

constexpr Column kMoney[] = {kToldDone, kBookedTwice, kChargedTwice, kWrong};
constexpr Column kNeverRight[] = {kLetIn, kDisturbed, kHang, kCrash};

}  // namespace

std::string limitOf(const std::string& first, const std::string& second, LineKind line) {
  const auto isIt = [&](const Limit& limit) {
    return (limit.fault == first || limit.fault == second) && (limit.lines >> static_cast<unsigned>(line) & 1U) != 0;
  };
  const auto* const found = std::ranges::find_if(kLimits, isIt);
  return found == std::end(kLimits) ? "" : std::string(found->fault);
}

std::string mistakes(const Tally& tally, const std::string& row, LineKind line) {
  Tally found{};
  const std::string rate = row.substr(std::min(row.find('%'), row.size()));
  if (limitOf(row, rate, line).empty()) {
    for (const Column column : kMoney) found[column] = tally[column];
  }
  for (const Column column : kNeverRight) found[column] = tally[column];
  return findings(found);
}

}  // namespace mirvane::campaign
