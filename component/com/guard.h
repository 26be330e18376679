#pragma once

namespace mirvane::com {

/// Runs `body(given)`. When it never returns, because the program raises an exception in code of its own that runs
/// within and catches it outside, or jumps out, `left(given)` runs on the way, while the stack is still there.
void guard(void (*body)(void*), void (*left)(void*), void* given);

/// Whether the address lies on the stack that this thread runs on now. A fiber has another one.
bool isOnStack(const void* address);

}  // namespace mirvane::com
