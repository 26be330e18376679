#include "com/entry.h"

#include <objbase.h>

#include "platform/windows/windows.h"

namespace mirvane::com {
namespace {

// The system's and not the language's: COM can wait for it, and it goes on to the next one when a thread ends inside.
HANDLE turns() {
  static const HANDLE kMutex = CreateMutexW(nullptr, FALSE, nullptr);
  return kMutex;
}

}  // namespace

Entry::Turn::Turn() {
  HANDLE mutex = turns();
  if (WaitForSingleObject(mutex, 0) != WAIT_TIMEOUT) return;
  DWORD which = 0;
  if (SUCCEEDED(CoWaitForMultipleHandles(0, INFINITE, 1, &mutex, &which))) return;
  // COM knows nothing of this thread, or cannot let it wait just now.
  WaitForSingleObject(mutex, INFINITE);
}

Entry::Turn::~Turn() { ReleaseMutex(turns()); }

}  // namespace mirvane::com
