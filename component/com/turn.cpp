#include "com/turn.h"

#include <objbase.h>

#include <array>
#include <utility>

namespace mirvane::com {
namespace {

enum class Signal { kNone, kPassed, kThreadEnded };

// A thread that is woken and ends before it takes its turn wakes nobody else, so all waiting threads look again now and
// then.
constexpr DWORD kLookAgainAfter = 1000;

struct Lock {
  explicit Lock(HANDLE mutex) : mutex_(mutex) { WaitForSingleObject(mutex_, INFINITE); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;
  ~Lock() { ReleaseMutex(mutex_); }

 private:
  HANDLE mutex_;
};

HANDLE duplicate(HANDLE thread) {
  HANDLE copy = nullptr;
  const HANDLE process = GetCurrentProcess();
  DuplicateHandle(process, thread, process, &copy, SYNCHRONIZE, FALSE, 0);
  return copy;
}

bool isSingleThreaded() {
  APTTYPE type{};
  APTTYPEQUALIFIER qualifier{};
  return SUCCEEDED(CoGetApartmentType(&type, &qualifier)) && (type == APTTYPE_STA || type == APTTYPE_MAINSTA);
}

// Index of the signalled handle; `count` or more if none is.
DWORD waitOnce(DWORD count, HANDLE* handles) {
  if (isSingleThreaded()) {
    DWORD which = 0;
    const HRESULT outcome = CoWaitForMultipleHandles(0, kLookAgainAfter, count, handles, &which);
    if (SUCCEEDED(outcome)) return which;
    if (outcome == RPC_S_CALLPENDING) return count;
    // COM cannot wait at this moment.
  }
  const DWORD which = MsgWaitForMultipleObjectsEx(count, handles, kLookAgainAfter, QS_SENDMESSAGE, 0);
  if (which == WAIT_FAILED) return WaitForMultipleObjects(count, handles, FALSE, kLookAgainAfter);
  if (which == count) {
    MSG none;
    PeekMessageW(&none, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
  }
  return which;
}

Signal waitFor(HANDLE passed, HANDLE thread) {
  std::array handles = {passed, thread};
  switch (waitOnce(thread != nullptr ? 2 : 1, handles.data())) {
    case 0:
      return Signal::kPassed;
    case 1:
      return thread != nullptr ? Signal::kThreadEnded : Signal::kNone;
    default:
      return Signal::kNone;
  }
}

}  // namespace

bool Turn::tryTake() {
  DWORD nobody = 0;
  const DWORD self = GetCurrentThreadId();
  if (!owner_.compare_exchange_strong(nobody, self)) return false;
  keepThread(self);
  return true;
}

void Turn::take() {
  if (tryTake()) return;
  const DWORD self = GetCurrentThreadId();
  await(self);
  keepThread(self);
}

void Turn::await(DWORD self) {
  for (bool isMine = false; !isMine;) {
    isAwaited_ = true;
    DWORD owner = 0;
    isMine = owner_.compare_exchange_strong(owner, self);
    if (isMine) break;
    const HANDLE thread = threadOf(owner);
    const Signal signal = waitFor(passed_, thread);
    // While the handle is held, the id belongs to the thread that has ended.
    isMine = signal == Signal::kThreadEnded && owner_.compare_exchange_strong(owner, self);
    if (thread != nullptr) CloseHandle(thread);
  }
  isAwaited_ = true;  // the event has woken one thread; others may be waiting
}

void Turn::pass() {
  owner_ = 0;
  if (isAwaited_.exchange(false)) SetEvent(passed_);
}

void Turn::keepThread(DWORD self) {
  if (lastOwner_ == self) return;
  const HANDLE thread = duplicate(GetCurrentThread());
  const Lock lock(threadLock_);
  lastOwner_ = self;
  const HANDLE before = std::exchange(lastThread_, thread);
  if (before != nullptr) CloseHandle(before);
}

HANDLE Turn::threadOf(DWORD owner) {
  const Lock lock(threadLock_);
  return lastOwner_ == owner && lastThread_ != nullptr ? duplicate(lastThread_) : nullptr;
}

}  // namespace mirvane::com
