#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "platform/ports.h"

// What the sources of this folder and of com/ need beyond <windows.h>.
namespace mirvane {

inline std::wstring toWide(TextView text) { return {text.begin(), text.end()}; }

inline Text fromWide(std::wstring_view text) { return {text.begin(), text.end()}; }

namespace platform {

// Kernel handles fit into 32 bits in 64-bit programs too; sign extension keeps the invalid handle invalid.
inline HANDLE toHandle(std::int32_t handle) { return reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(handle)); }
inline std::int32_t fromHandle(HANDLE handle) {
  return static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(handle));
}

/// Why the system refused the latest call.
SystemError lastError();

/// The DLL or program that this code is linked into.
HMODULE ownModule();
/// Its full path; empty if the system does not give it.
std::wstring ownPath();

}  // namespace platform
}  // namespace mirvane
