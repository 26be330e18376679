#pragma once

#include <atomic>

#include "platform/windows/windows.h"

namespace mirvane::com {

/// Whose turn it is to be inside the component: one thread's at a time. There is no order among those who wait. Taking
/// and passing it on costs no call of the system's where nobody waits and the thread is the one of last time.
///
/// A thread that ends with the turn loses it to the next that wants it.
class Turn {
 public:
  Turn() = default;
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;

  /// Whether the calling thread has it.
  bool isMine() const { return owner_ == GetCurrentThreadId(); }

  /// Waits for it, as COM waits where COM knows the thread as a single-threaded apartment: its windows go on, and calls
  /// to its objects are served. Any other thread serves what is sent to its windows.
  void take();
  /// Takes it if nobody has it.
  bool tryTake();
  void pass();

 private:
  void await(DWORD self);
  void keepThread(DWORD self);
  HANDLE threadOf(DWORD owner);

  /// The thread that has it, 0 for none.
  std::atomic<DWORD> owner_ = 0;
  /// Whether somebody may be waiting for `passed_`.
  std::atomic<bool> isAwaited_ = false;
  const HANDLE passed_ = CreateEventW(nullptr, FALSE, FALSE, nullptr);

  /// The thread that had it last. As long as the handle is held, no other thread gets its number.
  DWORD lastOwner_ = 0;
  HANDLE lastThread_ = nullptr;
  /// Guards these two. The system's and not the language's: it goes on to the next one when a thread ends with it.
  const HANDLE threadLock_ = CreateMutexW(nullptr, FALSE, nullptr);
};

}  // namespace mirvane::com
