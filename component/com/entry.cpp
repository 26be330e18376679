#include "com/entry.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <utility>

#include "com/guard.h"
#include "com/turn.h"
#include "interface/door.h"
#include "platform/windows/floating_point.h"
#include "platform/windows/window.h"

namespace mirvane::com {

class Errands {
 public:
  bool areThere() const { return first_ != nullptr; }

  void add(Errand& errand) {
    errand.next_ = first_;
    while (!first_.compare_exchange_weak(errand.next_, &errand)) {
    }
  }

  void run() {
    for (Errand* errand = first_.exchange(nullptr); errand != nullptr;) {
      std::exchange(errand, errand->next_)->run();
    }
  }

 private:
  std::atomic<Errand*> first_ = nullptr;
};

namespace {

using platform::DuringCall;
using platform::OwnFloatingPoint;

/// One entry, on its thread's stack.
struct Visit {
  void (*body)(void*);
  void* given;
  /// Unique number of an outermost entry.
  std::uint64_t number = 0;
  bool isOutermost = false;
  /// Which call that never returned has left something to clean up: one of this thread, or one of a thread that has
  /// ended.
  enum class Remains { kNone, kOfThisThread, kOfEndedThread } remains = Remains::kNone;
  /// How many DuringCall objects existed before.
  std::size_t shownBefore = 0;
};

Errands errands;

// Never destroyed: programs release objects until the very end of the process.
Turn& turn() {
  static Turn& the = *new Turn;
  return the;
}

// The call that has the turn, and its number. Still set if its thread ended inside.
const Visit* outermost = nullptr;
std::uint64_t lastNumber = 0;

// Whether the program has left a call of this thread by a jump of which nobody is notified. The stack grows downwards,
// so memory above has been reused.
bool isGone(const Visit* call, const Visit* now) {
  return isOnStack(call) && (std::less_equal<>()(call, now) || call->number != lastNumber);
}

void run(void* given) {
  const Visit& now = *static_cast<Visit*>(given);
  if (now.isOutermost) OwnFloatingPoint::forget();
  if (now.remains == Visit::Remains::kOfThisThread) DuringCall::endFrom(0);
  if (now.remains == Visit::Remains::kOfEndedThread) DuringCall::forget();
  const OwnFloatingPoint own;
  if (now.remains != Visit::Remains::kNone) forgetCall();
  errands.run();
  if (now.body != nullptr) now.body(now.given);
}

void pass();

// The program is leaving a call whose stack still exists.
void left(void* given) {
  const Visit& past = *static_cast<Visit*>(given);
  DuringCall::endFrom(past.shownBefore);
  if (!past.isOutermost) return;
  {
    const OwnFloatingPoint own;
    forgetCall();
  }
  OwnFloatingPoint::forget();
  pass();
}

// A stack frame of its own distinguishes the calls.
[[gnu::noinline]] void visit(void (*body)(void*), void* given, bool waits) {
  Visit now{body, given};
  const bool isMine = turn().isMine();
  if (!isMine && waits) turn().take();
  if (!isMine && !waits && !turn().tryTake()) return;
  now.isOutermost = !isMine || isGone(outermost, &now);
  if (now.isOutermost) {
    now.number = ++lastNumber;
    const Visit* const before = std::exchange(outermost, &now);
    if (before != nullptr) now.remains = isMine ? Visit::Remains::kOfThisThread : Visit::Remains::kOfEndedThread;
  } else {
    now.shownBefore = DuringCall::count();
  }
  guard(&run, &left, &now);
  if (now.isOutermost) pass();
}

void pass() {
  outermost = nullptr;
  turn().pass();
  if (errands.areThere()) visit(nullptr, nullptr, false);
}

}  // namespace

void enter(void (*body)(void*), void* given) { visit(body, given, true); }

void Errand::go() {
  errands.add(*this);
  visit(nullptr, nullptr, false);
}

}  // namespace mirvane::com
