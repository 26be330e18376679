#include <excpt.h>

#include "com/guard.h"
#include "platform/windows/windows.h"

// On 32-bit Windows whoever wants to know of an exception adds itself to a list, which begins at the thread's first
// entry and goes up the stack.
namespace mirvane::com {
namespace {

using Handler = EXCEPTION_DISPOSITION(EXCEPTION_RECORD* exception, void* frame, CONTEXT* context, void* dispatcher);

struct Registration {
  EXCEPTION_REGISTRATION_RECORD* outer;
  Handler* handler;
  void (*left)(void*);
  void* given;
};

// Called once while a handler is looked for, and once more when one was found further out.
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
