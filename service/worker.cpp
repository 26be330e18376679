#include "service/worker.h"

#include "service/words.h"

namespace mirvane::service {
namespace {

constexpr double kIdleSeconds = 5;
constexpr std::uint32_t kPatience = 1000;

/// What there is of it in a database's memory.
std::string seenText(const std::string& serialNumber, const Picture& picture) {
  http::Json seen = picture.json();
  return seen.set("serialNumber", serialNumber).dump(false);
}

}  // namespace

Worker::Worker(platform::Platform& machine, Store& store, Board& board, const Text& port, TextView recordFolder)
    : store_(store),
      board_(board),
      register_(machine, board, port, recordFolder,
                [this](const std::string& name, std::string_view bytes) { return keepFile(name, bytes); }) {}

void Worker::wake() { hasWork_ = true; }

void Worker::run(const std::function<void(std::uint32_t)>& sleep) {
  while (!isStopped_) {
    if (!step() && !isStopped_) sleep(kPatience);
  }
}

bool Worker::step() {
  try {
    return work();
  } catch (const std::exception& error) {
    // A store that cannot be written: nothing is sent that it does not know. What is in hand is taken up anew.
    isReady_ = false;
    const std::string why = error.what();
    if (board_.facts().held != why) board_.log("trouble", {{"text", why}});
    board_.change([&](Board::Facts& facts) { facts.held = why; });
    return false;
  }
}

bool Worker::work() {
  if (!makeReady()) return false;
  std::optional<Job> job = store_.claim();
  const bool isPaused = job && job->state == State::kNeedsPayment && job->version == pausedAt_;
  if (!job || isPaused) {
    lookIdly();
    return false;
  }
  hasWork_ = false;
  atWork_ = job->id;
  board_.change([&](Board::Facts& facts) { facts.job = job->id; });
  perform(*job);
  nextLook_ = register_.clock().elapsed() + kIdleSeconds;
  board_.change([](Board::Facts& facts) {
    facts.job.clear();
    facts.wait = {};
  });
  return true;
}

/// Connected, and sure that the store knows all that the register did.
bool Worker::makeReady() {
  if (!register_.connect()) {
    known_.reset();
    register_.waitAWhile();
    return false;
  }
  if (isReady_) return true;
  const auto now = register_.look();
  if (!now) {
    register_.waitAWhile();
    return false;
  }
  register_.goOn();
  if (isOlderThanRegister(*now)) {
    hold(*now);
    if (!board_.takeWish("accept")) return false;
    board_.log("accepted", {{"serialNumber", register_.serialNumber()}});
  }
  store_.remember("seen", seenText(register_.serialNumber(), *now));
  board_.change([](Board::Facts& facts) { facts.held.clear(); });
  known_ = now;
  return isReady_ = true;
}

/// The register has gone on without this store: a copy of an earlier day was put back, or somebody else uses it.
bool Worker::isOlderThanRegister(const Picture& now) {
  const std::string text = store_.recall("seen");
  if (text.empty()) return false;
  const http::Json seen = http::parseJson(text);
  auto before = Picture::from(seen);
  const auto* serialNumber = seen.find("serialNumber")->as<std::string>();
  const std::optional<Job> begun = store_.claim();
  const bool isBegun = begun && begun->state != State::kQueued;
  if (!before || *serialNumber != register_.serialNumber()) {
    // What was begun at another register cannot be asked for here.
    if (isBegun) {
      Job job = *begun;
      leaveUnknown(job, "another-register", before.value_or(Picture()), now);
    }
    return false;
  }
  // One job may have been done that the store does not know of yet; it was begun where the register stood then.
  if (const http::Json progress = http::parseJson(isBegun ? begun->progress : "{}"); progress.find("before")) {
    before = Picture::from(*progress.find("before"));
  }
  const int slack = isBegun ? 1 : 0;
  if (now.day != before->day) {
    const bool isOurs = isBegun && begun->kind == "z" && now.day == before->day + 1 && now.number == 0;
    return !isOurs;
  }
  const bool isKnown = now.receipts >= before->receipts && now.receipts <= before->receipts + slack &&
                       now.number >= before->number && now.number <= before->number + slack &&
                       now.cashDocuments >= before->cashDocuments && now.cashDocuments <= before->cashDocuments + slack;
  return !isKnown;
}

void Worker::hold(const Picture& now) {
  constexpr const char* kWhy = "older-than-register";
  if (board_.facts().held == kWhy) return;
  board_.log("held", {{"why", kWhy}});
  const auto before = Picture::from(http::parseJson(store_.recall("seen")));
  // Each may have been done behind the store's back.
  while (std::optional<Job> job = store_.claim()) leaveUnknown(*job, kWhy, before.value_or(Picture()), now);
  board_.change([&](Board::Facts& facts) { facts.held = kWhy; });
}

/// Somebody may use the register meanwhile, or take its paper; whoever wants work done does not wait for this.
void Worker::lookIdly() {
  const bool isWished = board_.takeWish("void");
  if (known_ && !isWished && register_.clock().elapsed() < nextLook_) return;
  std::optional<Picture> now = register_.lookOnce([this] { return hasWork_.load(); });
  if (!now && hasWork_) return;
  if (now && now != known_) now = register_.look();
  nextLook_ = register_.clock().elapsed() + kIdleSeconds;
  if (!now) {
    known_.reset();
    return register_.waitAWhile();
  }
  register_.goOn();
  if (now != known_) store_.remember("seen", seenText(register_.serialNumber(), *now));
  known_ = now;
  if (isWished && now->open != Picture::Open::kNothing) {
    register_.call("VoidReceipt");
    known_.reset();
  }
}

bool Worker::keepFile(const std::string& name, std::string_view bytes) {
  try {
    store_.keepFile(atWork_, name, std::string(bytes));
    return true;
  } catch (const StoreError& error) {
    board_.log("trouble", {{"text", error.what()}});
    return false;
  }
}

void Worker::perform(Job& job) {
  if (isCancelled(job) && job.state == State::kQueued) return refuse(job, 0, "cancelled");
  if (job.kind == "receipt") return performReceipt(job);
  if (job.kind == "cash") return performCash(job);
  if (job.kind == "z") return performClosing(job);
  if (job.kind == "x") return performHarmless(job, [this] { return register_.call("issueXReport"); });
  if (job.kind == "drawer") return performHarmless(job, [this] { return register_.call("DrawerOpen"); });
  Faults faults;
  DisplayText display = readDisplay(http::parseJson(job.content), faults);
  performHarmless(job, [&] {
    return register_.call("commentDisplayPrint", 1, display.lines[0]) &&
           (display.lines[1].empty() || register_.call("commentDisplayPrint", 2, display.lines[1]));
  });
}

Picture Worker::mustLook() {
  for (;;) {
    if (register_.connect()) {
      if (const auto now = register_.look()) {
        register_.goOn();
        return *(known_ = now);
      }
    }
    register_.waitAWhile();
  }
}

Picture Worker::known() { return known_ ? *known_ : mustLook(); }

bool Worker::isCancelled(const Job& job) { return board_.takeWish("cancel " + job.id); }

void Worker::save(Job& job, const http::Json& progress) {
  job.progress = progress.dump(false);
  job.changed = register_.clock().sinceEpoch();
  // Only what is queued, waits for its caller or is over is anybody else's to change.
  if (!store_.save(job)) throw StoreError(job.id + ": changed by another service");
  board_.change([](Board::Facts&) {});
}

void Worker::finish(Job& job, State state, http::Json result, const std::optional<Picture>& now) {
  job.state = state;
  job.result = result.dump(false);
  job.changed = register_.clock().sinceEpoch();
  if (!store_.save(job, now ? seenText(register_.serialNumber(), *now) : "")) {
    throw StoreError(job.id + ": changed by another service");
  }
  board_.log("over", {{"id", job.id}, {"kind", job.kind}, {"state", nameOf(state)}});
  board_.change([&](Board::Facts& facts) {
    ++facts.outcomes[{job.kind, nameOf(state)}];
    facts.jobSeconds[job.kind].add(std::max(0.0, static_cast<double>(job.changed - job.created) / 1000));
  });
}

void Worker::refuse(Job& job, std::int16_t code, const std::string& text) {
  finish(job, State::kNotCommitted, failureView(code, text), known_);
}

void Worker::leaveUnknown(Job& job, const std::string& why, const Picture& before, const Picture& now) {
  board_.log("unknown", {{"id", job.id}, {"why", why}});
  // What was seen last stays what it was until a person has accepted how the register stands.
  finish(job, State::kUnknown, {{"why", why}, {"before", before.json()}, {"now", now.json()}},
         isReady_ ? std::optional(now) : std::nullopt);
}

}  // namespace mirvane::service
