#include "service/words.h"
#include "service/worker.h"

namespace mirvane::service {
namespace {

using http::Json;

constexpr int kMostClosings = 5;

/// Where the register stood before the job was begun; nothing when it was not.
std::optional<Picture> beginning(const Job& job) {
  const Json progress = http::parseJson(job.progress);
  const Json* before = progress.find("before");
  return before ? Picture::from(*before) : std::nullopt;
}

}  // namespace

/// The document is booked when it is closed, and counted then.
void Worker::performCash(Job& job) {
  Faults faults;
  const CashDocument cash = readCash(http::parseJson(job.content), faults);
  auto before = beginning(job);
  std::int16_t code = 0;
  std::string text;
  for (;;) {
    const Picture now = before ? mustLook() : known();
    if (now.open == Picture::Open::kCashDocument) {
      // Its second command is missing.
      if (!register_.send(u"O/1/")) register_.waitAWhile();
      known_.reset();
      continue;
    }
    if (before) {
      const bool isSame = now.day == before->day && now.receipts == before->receipts;
      if (isSame && now.cashDocuments == before->cashDocuments + 1) {
        return finish(job, State::kCommitted,
                      {{"amount", euros(cash.amount)},
                       {"day", now.day},
                       {"serialNumber", register_.serialNumber()},
                       {"time", register_.clock().sinceEpoch()}},
                      now);
      }
      if (!isSame || now.cashDocuments != before->cashDocuments) return leaveUnknown(job, "other-state", *before, now);
      if (code > 0) return refuse(job, code, text);
    }
    if (isCancelled(job)) return refuse(job, 0, "cancelled");
    before = now;
    job.state = State::kPrinting;
    save(job, Json{{"before", now.json()}});
    known_.reset();
    if (register_.call(cash.isIn ? "executeCashIn" : "executeCashOut", euros(cash.amount), cash.description)) continue;
    text = register_.text();
    code = register_.isInTheWay() ? std::int16_t{0} : register_.result();
    if (code == 0) register_.waitAWhile();
  }
}

/// The day's number tells whether it was closed. Calling again is safe: the day is closed once.
void Worker::performClosing(Job& job) {
  auto before = beginning(job);
  std::int16_t code = 0;
  std::string text;
  for (int tries = 0;; ++tries) {
    const Picture now = before ? mustLook() : known();
    if (before && now.day == before->day + 1) {
      Json::List files;
      for (const Store::File& file : store_.files(job.id)) {
        files.push_back(Json{{"name", file.name}, {"size", file.size}});
      }
      return finish(job, State::kCommitted,
                    {{"day", before->day},
                     {"files", files},
                     {"serialNumber", register_.serialNumber()},
                     {"time", register_.clock().sinceEpoch()}},
                    now);
    }
    if (before && now.day != before->day) return leaveUnknown(job, "other-state", *before, now);
    if (code > 0) return refuse(job, code, text);
    if (isCancelled(job)) return refuse(job, 0, "cancelled");
    before = now;
    job.state = State::kPrinting;
    save(job, Json{{"before", now.json()}});
    known_.reset();
    if (register_.call("issueZReport")) continue;
    text = register_.text();
    const bool isRefused = !register_.isInTheWay() || (register_.result() > 0 && tries >= kMostClosings);
    code = isRefused ? register_.result() : std::int16_t{0};
    if (!isRefused) register_.waitAWhile();
  }
}

void Worker::performHarmless(Job& job, const std::function<bool()>& act) {
  job.state = State::kPrinting;
  save(job, Json(Json::Object{}));
  while (!act()) {
    if (!register_.isInTheWay()) return refuse(job, register_.result(), register_.text());
    if (isCancelled(job)) return refuse(job, 0, "cancelled");
    register_.waitAWhile();
    register_.connect();
  }
  register_.goOn();
  finish(job, State::kCommitted,
         {{"serialNumber", register_.serialNumber()}, {"time", register_.clock().sinceEpoch()}});
}

}  // namespace mirvane::service
