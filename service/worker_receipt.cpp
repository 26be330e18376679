#include <algorithm>

#include "service/words.h"
#include "service/worker.h"

// A receipt is rung up line by line, which books nothing: whatever goes wrong up to its total, it is cancelled and rung
// up anew. Before it is paid, the register's own number and total are held against it. Each payment is announced in the
// store, and nothing is paid again before the register's picture says that it was not.
namespace mirvane::service {
namespace {

using http::Json;

constexpr int kMostRings = 5;

enum class Phase { kNew, kLines, kOpen, kPaying };

}  // namespace

struct Worker::Progress {
  explicit Progress(const Json& json) {
    const auto number = [&json](const char* name) {
      const Json* value = json.find(name);
      return value ? static_cast<Cents>(*value->as<double>()) : 0;
    };
    phase = static_cast<Phase>(number("phase"));
    next = static_cast<std::size_t>(number("next"));
    paid = number("paid");
    isCancelled = json.find("cancel") != nullptr;
    if (const Json* picture = json.find("before")) before = Picture::from(*picture).value_or(Picture());
    if (const Json* list = json.find("tenders")) tenders = *list->as<Json::List>();
    if (const Json* list = json.find("added")) added = *list->as<Json::List>();
    if (const Json* last = json.find("failure")) failure = *last;
  }
  Json json() const {
    Json json{{"phase", static_cast<int>(phase)}, {"next", next},       {"paid", paid},
              {"before", before.json()},          {"tenders", tenders}, {"added", added}};
    if (isCancelled) json.set("cancel", true);
    if (!failure.isNull()) json.set("failure", failure);
    return json;
  }

  Phase phase = Phase::kNew;
  Picture before;
  /// The payment to come, or that is announced; what is paid, and with what.
  std::size_t next = 0;
  Cents paid = 0;
  Json::List tenders;
  /// Payments that came later.
  Json::List added;
  Json failure;
  bool isCancelled = false;

  // Of this run of the program alone.
  int tries = 0;
  /// Why the lines are taken back.
  std::int16_t code = 0;
  std::string text;
};

void Worker::performReceipt(Job& job) {
  Faults faults;
  Receipt receipt = readReceipt(http::parseJson(job.content), {}, faults);
  Progress progress(http::parseJson(job.progress));
  for (const Json& payment : progress.added) receipt.payments.push_back(readPayment(payment, "", {}, faults));
  // Taken up from the store: what was under way may be done or not.
  if (progress.phase == Phase::kLines) undo(job, progress);
  if (progress.phase == Phase::kPaying) judgePayment(job, receipt, progress);
  if (progress.phase == Phase::kOpen && !isOver(job.state)) settleOpen(job, receipt, progress);
  while (!isOver(job.state) && job.state != State::kNeedsPayment) {
    switch (progress.phase) {
      case Phase::kNew:
        begin(job, progress);
        break;
      case Phase::kLines:
        if (ring(receipt, progress.before)) {
          progress.phase = Phase::kOpen;
        } else {
          progress.code = register_.result();
          progress.text = register_.text();
          if (register_.isInTheWay()) {
            if (progress.code != embedding::Till::kUntouched) --progress.tries;
            register_.waitAWhile();
          } else if (progress.code > 0) {
            progress.tries = kMostRings;
          }
          undo(job, progress);
        }
        break;
      case Phase::kOpen:
        pay(job, receipt, progress);
        break;
      case Phase::kPaying:
        judgePayment(job, receipt, progress);
        break;
    }
  }
}

void Worker::begin(Job& job, Progress& progress) {
  if (progress.isCancelled || isCancelled(job)) return refuse(job, 0, "cancelled");
  progress.before = known();
  if (progress.before.open == Picture::Open::kCashDocument) {
    register_.send(u"O/1/");
    known_.reset();
    return;
  }
  if (progress.before.open == Picture::Open::kReceipt) {
    register_.waitFor({"register", 0, "document-open"});
    if (board_.takeWish("void")) register_.call("VoidReceipt");
    register_.pass(1000);
    known_.reset();
    return;
  }
  ++progress.tries;
  progress.phase = Phase::kLines;
  job.state = State::kPrinting;
  save(job, progress.json());
}

/// Whether the open receipt is what was asked for, by what the register says of it.
bool Worker::ring(const Receipt& receipt, const Picture& before) {
  known_.reset();
  bool isCertain = true;
  if (!receipt.footer.empty()) {
    std::vector<Text> lines = receipt.footer;
    lines.resize(3);
    if (!register_.call("setTempFooter", lines[0], lines[1], lines[2])) return false;
    isCertain = register_.isCertain();
  }
  for (const Line& line : receipt.lines) {
    if (!register_.ring(line)) return false;
    isCertain = isCertain && register_.isCertain();
  }
  const auto open = register_.openReceipt();
  return isCertain && open && *open == std::pair{before.number + 1, receipt.total()};
}

/// No receipt of ours stays open, and none can have been booked: nothing was paid.
void Worker::undo(Job& job, Progress& progress) {
  constexpr int kMostCancels = 5;
  board_.count([](Board::Facts& facts) { ++facts.repetitions; });
  for (int i = 0;; ++i) {
    const Picture now = mustLook();
    const bool isOurs = now.day == progress.before.day && now.receipts == progress.before.receipts;
    if (!isOurs || i == kMostCancels) return leaveUnknown(job, "other-state", progress.before, now);
    if (now.open != Picture::Open::kReceipt) break;
    if (!register_.send(u"O/2/") && register_.isInTheWay()) register_.waitAWhile();
  }
  progress.phase = Phase::kNew;
  if (progress.isCancelled || isCancelled(job)) return refuse(job, 0, "cancelled");
  if (progress.tries < kMostRings) return;
  if (progress.code > 0) return refuse(job, progress.code, progress.text);
  refuse(job, 0, "differs");
}

void Worker::pay(Job& job, const Receipt& receipt, Progress& progress) {
  const Cents due = receipt.total() - progress.paid;
  if (progress.isCancelled) return cancelOpen(job, progress);
  if (progress.next >= receipt.payments.size()) return needPayment(job, receipt, progress);
  const Payment& payment = receipt.payments[progress.next];
  const Cents amount = payment.amount.value_or(due);
  progress.phase = Phase::kPaying;
  save(job, progress.json());
  known_.reset();
  const bool isDone = register_.pay(payment, amount, amount >= due);
  // The usual case: all is paid, and the register's last word is that nothing is open any more.
  if (isDone && register_.isCertain() && amount >= due && !register_.isDocumentOpen()) {
    progress.tenders.push_back(Json{{"type", payment.type}, {"amount", euros(amount)}});
    progress.paid += amount;
    known_ = progress.before;
    ++known_->receipts;
    ++known_->number;
    return finishReceipt(job, receipt, progress);
  }
  progress.code = register_.isInTheWay() ? std::int16_t{0} : register_.result();
  progress.text = register_.text();
  if (register_.isInTheWay()) register_.waitAWhile();
  judgePayment(job, receipt, progress);
}

/// Whatever was to be paid is done or refused, and not all is paid.
void Worker::needPayment(Job& job, const Receipt& receipt, const Progress& progress) {
  const Cents due = receipt.total() - progress.paid;
  Json result{{"total", euros(receipt.total())}, {"remaining", euros(due)}, {"number", progress.before.number + 1}};
  if (!progress.failure.isNull()) result.set("failure", progress.failure);
  job.state = State::kNeedsPayment;
  job.result = result.dump(false);
  save(job, progress.json());
  pausedAt_ = job.version;
  board_.log("needs-payment", {{"id", job.id}});
}

/// What became of the payment that is announced.
void Worker::judgePayment(Job& job, const Receipt& receipt, Progress& progress) {
  const Picture now = mustLook();
  const Picture& before = progress.before;
  const Payment& payment = receipt.payments[progress.next];
  const Cents due = receipt.total() - progress.paid;
  const Cents amount = payment.amount.value_or(due);
  const bool isSameDay = now.day == before.day && now.number == before.number + 1;
  const bool isOpen = isSameDay && now.open == Picture::Open::kReceipt && now.receipts == before.receipts &&
                      now.total == receipt.total();
  const bool isClosed = isSameDay && now.open == Picture::Open::kNothing;
  const auto book = [&] {
    progress.tenders.push_back(Json{{"type", payment.type}, {"amount", euros(amount)}});
    progress.paid += amount;
    ++progress.next;
    progress.failure = {};
  };
  if (isOpen && now.remaining == due) {
    progress.phase = Phase::kOpen;
    // The register refused it, or the card's owner did: that is the caller's affair. Otherwise it is made again.
    if (progress.code > 0) {
      progress.failure = failureView(progress.code, progress.text);
      progress.code = 0;
      ++progress.next;
      needPayment(job, receipt, progress);
    }
  } else if (isOpen && now.remaining == due - std::min(amount, due)) {
    book();
    progress.phase = Phase::kOpen;
    save(job, progress.json());
    if (now.remaining == 0) settleOpen(job, receipt, progress);
  } else if (isClosed && now.receipts == before.receipts + 1 && amount >= due) {
    book();
    finishReceipt(job, receipt, progress);
  } else if (isClosed && now.receipts == before.receipts) {
    refuse(job, 0, "gone");
  } else {
    leaveUnknown(job, "other-state", before, now);
  }
}

/// A receipt between two payments, as it is found: it may be wholly paid and open, and somebody may have touched it.
void Worker::settleOpen(Job& job, const Receipt& receipt, Progress& progress) {
  const Cents due = std::max<Cents>(receipt.total() - progress.paid, 0);
  for (;;) {
    const Picture now = mustLook();
    const Picture& before = progress.before;
    const bool isSameDay = now.day == before.day && now.number == before.number + 1;
    const bool isClosed = isSameDay && now.open == Picture::Open::kNothing;
    if (isClosed && now.receipts == before.receipts + 1 && due == 0) return finishReceipt(job, receipt, progress);
    if (isClosed && now.receipts == before.receipts) return refuse(job, 0, "gone");
    const bool isOpen = isSameDay && now.open == Picture::Open::kReceipt && now.receipts == before.receipts;
    if (!isOpen || now.remaining != due) return leaveUnknown(job, "other-state", before, now);
    if (due > 0) return;
    if (!register_.send(u"O/1/")) register_.waitAWhile();
  }
}

/// The caller does not want it any more. A card that was charged stands in the way.
void Worker::cancelOpen(Job& job, Progress& progress) {
  const bool isDone = register_.send(u"O/2/");
  const std::int16_t code = register_.result();
  const std::string text = register_.text();
  const bool isInTheWay = register_.isInTheWay();
  const Picture now = mustLook();
  if (now.open == Picture::Open::kNothing && now.receipts == progress.before.receipts)
    return refuse(job, 0, "cancelled");
  if (isDone || now.open == Picture::Open::kNothing) return leaveUnknown(job, "other-state", progress.before, now);
  if (isInTheWay) return register_.waitAWhile();
  progress.isCancelled = false;
  progress.failure = failureView(code, text);
}

void Worker::finishReceipt(Job& job, const Receipt& receipt, const Progress& progress) {
  finish(job, State::kCommitted,
         {{"number", progress.before.number + 1},
          {"day", progress.before.day},
          {"total", euros(receipt.total())},
          {"change", euros(progress.paid - receipt.total())},
          {"tenders", progress.tenders},
          {"serialNumber", register_.serialNumber()},
          {"time", register_.clock().sinceEpoch()}},
         known_);
}

}  // namespace mirvane::service
