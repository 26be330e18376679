#pragma once

#include "campaign/day.h"
#include "campaign/kills.h"

namespace mirvane::campaign {

/// What callers of the service have it do.
constexpr std::size_t kServiceScenarios = 4;

/// Callers that time out and repeat want receipts, closings and cash documents of a service, which is killed where the
/// rules say so and started again; its answers are held against what the register booked. The rules are the emulator's,
/// "killed after N" as in runSaved, and "store fails after N": that write does not reach the disk, nor do the four
/// behind it, or with "store read-only after N" all of them until the service is started anew. `machine` is fresh.
Tally runService(Machine& machine, std::size_t scenario, const std::vector<std::string>& rules, const Log& log = {});

Moments countServiceMoments(LineKind line, std::size_t scenario);
/// How often the store is written.
long countServiceWrites(LineKind line, std::size_t scenario);

}  // namespace mirvane::campaign
