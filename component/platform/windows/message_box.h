#pragma once

#include <string>

#include "platform/windows/windows.h"

namespace mirvane::platform {

/// Shows a message box and waits until it is closed. If nobody can see it, the text goes to the debugger's output
/// instead. Meanwhile the thread's windows take no input.
void showMessageBox(const std::wstring& prompt, UINT style, const std::wstring& title);

}  // namespace mirvane::platform
