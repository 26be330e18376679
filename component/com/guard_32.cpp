#include <excpt.h>

#include "com/guard.h"
#include "platform/windows/windows.h"

// On 32-bit Windows, exception handlers are in a list that starts at the thread's first entry and follows the stack.
namespace mirvane::com {
namespace {

using Handler = EXCEPTION_DISPOSITION(EXCEPTION_RECORD* exception, void* frame, CONTEXT* context, void* dispatcher);

struct Registration {
  EXCEPTION_REGISTRATION_RECORD* outer;
  Handler* handler;
  void (*left)(void*);
  void* given;
};

// Called once while the system looks for a handler, and again after one was found further out.
EXCEPTION_DISPOSITION unwound(EXCEPTION_RECORD* exception, void* frame, CONTEXT* /*context*/, void* /*dispatcher*/) {
  constexpr DWORD kUnwinding = 2;
  const auto* const registration = static_cast<const Registration*>(frame);
  if ((exception->ExceptionFlags & kUnwinding) != 0) registration->left(registration->given);
  return ExceptionContinueSearch;
}

NT_TIB& thisThread() {
  NT_TIB* block = nullptr;
  asm("movl %%fs:24, %0" : "=r"(block));
  return *block;
}

}  // namespace

void guard(void (*body)(void*), void (*left)(void*), void* given) {
  NT_TIB& thread = thisThread();
  Registration registration{thread.ExceptionList, &unwound, left, given};
  thread.ExceptionList = reinterpret_cast<EXCEPTION_REGISTRATION_RECORD*>(&registration);
  body(given);
  thread.ExceptionList = registration.outer;
}

bool isOnStack(const void* address) {
  const NT_TIB& thread = thisThread();
  return address >= thread.StackLimit && address < thread.StackBase;
}

}  // namespace mirvane::com
