#pragma once

#include <string>

#include "platform/windows/windows.h"

namespace mirvane::platform {

/// Shows a message box and waits until it is closed. Where nobody can see it its text goes to the debugger's output
/// instead. No window of the thread takes input meanwhile.
void showMessageBox(const std::wstring& prompt, UINT style, const std::wstring& title);

}  // namespace mirvane::platform
