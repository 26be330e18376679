#include <excpt.h>

#include "com/guard.h"
#include "platform/windows/windows.h"

// On 64-bit Windows a handler belongs to a function and is listed in its unwind tables, where the compiler puts its own
// for C++. That one ignores exceptions of other languages.

// body in rcx, left in rdx, given in r8; the latter two are stored where the handler finds them.
asm(R"(
  .text
  .globl mirvane_guard
  .def mirvane_guard; .scl 2; .type 32; .endef
  .seh_proc mirvane_guard
mirvane_guard:
  subq $56, %rsp
  .seh_stackalloc 56
  .seh_endprologue
  movq %rdx, 32(%rsp)
  movq %r8, 40(%rsp)
  movq %rcx, %rax
  movq %r8, %rcx
  callq *%rax
  nop
  addq $56, %rsp
  retq
  .seh_handler mirvane_unwound, @unwind
  .seh_endproc
)");

extern "C" {

void mirvane_guard(void (*body)(void*), void (*left)(void*), void* given);

EXCEPTION_DISPOSITION mirvane_unwound(EXCEPTION_RECORD* /*exception*/, const char* frame, CONTEXT* /*context*/,
                                      void* /*dispatcher*/) {
  struct Kept {
    void (*left)(void*);
    void* given;
  };
  const auto* const kept = reinterpret_cast<const Kept*>(frame + 32);
  kept->left(kept->given);
  return ExceptionContinueSearch;
}
}

namespace mirvane::com {

void guard(void (*body)(void*), void (*left)(void*), void* given) { mirvane_guard(body, left, given); }

bool isOnStack(const void* address) {
  const NT_TIB* thread = nullptr;
  asm("movq %%gs:48, %0" : "=r"(thread));
  return address >= thread->StackLimit && address < thread->StackBase;
}

}  // namespace mirvane::com
