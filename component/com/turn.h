#pragma once

#include <atomic>

#include "platform/windows/windows.h"

namespace mirvane::com {

/// Which thread is inside the component: one at a time. Waiting threads have no order. Taking and passing on the turn
/// needs no system call if nobody waits and the same thread had it last.
///
/// A thread that ends while it has the turn loses it to the next one that wants it.
class Turn {
 public:
  Turn() = default;
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;

  /// Whether the calling thread has the turn.
  bool isMine() const { return owner_ == GetCurrentThreadId(); }

  /// Waits for the turn. On a thread that COM knows as a single-threaded apartment it waits as COM does: windows are
  /// served, and so are calls to its objects. Any other thread serves messages sent to its windows.
  void take();
  /// Takes the turn if nobody has it.
  bool tryTake();
  void pass();

 private:
  void await(DWORD self);
  void keepThread(DWORD self);
  HANDLE threadOf(DWORD owner);

  /// The thread that has the turn; 0 for none.
  std::atomic<DWORD> owner_ = 0;
  /// Whether some thread may be waiting for `passed_`.
  std::atomic<bool> isAwaited_ = false;
  const HANDLE passed_ = CreateEventW(nullptr, FALSE, FALSE, nullptr);

  /// The last thread that had the turn. While the handle is held, no other thread gets its id.
  DWORD lastOwner_ = 0;
  HANDLE lastThread_ = nullptr;
  /// Guards these two. A system mutex and not std::mutex: it passes to the next thread if its owner ends.
  const HANDLE threadLock_ = CreateMutexW(nullptr, FALSE, nullptr);
};

}  // namespace mirvane::com
