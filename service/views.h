#pragma once

#include "service/board.h"
#include "service/store.h"

// What the interface shows. page/openapi.json describes it.
namespace mirvane::service {

http::Json jobView(const Job& job, const Board::Facts& facts);
/// What was asked for; of a receipt, what it comes to, and the payments that were added later.
http::Json askedView(const Job& job);
http::Json statusView(const Board::Facts& facts, int unfinished);
http::Json totalsView(const Board::Facts& facts);
/// For Prometheus.
std::string metricsText(const Board::Facts& facts, int unfinished);
/// "2026-11-22T20:33:37.000Z", of milliseconds since 1970.
std::string timeText(std::int64_t moment);

}  // namespace mirvane::service
