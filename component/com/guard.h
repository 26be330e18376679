#pragma once

namespace mirvane::com {

/// Runs `body(given)`. If it never returns, because program code called within throws an exception that is caught
/// outside, or jumps out, `left(given)` runs during the unwinding, while the stack still exists.
void guard(void (*body)(void*), void (*left)(void*), void* given);

/// Whether the address is on the stack that this thread currently runs on. A fiber has its own stack.
bool isOnStack(const void* address);

}  // namespace mirvane::com
