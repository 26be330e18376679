#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/ports.h"

// What sources for Windows need beyond <windows.h>.
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

/// An argument of a command line, as CommandLineToArgvW parses it: backslashes count double before a quote.
inline std::wstring quoted(std::wstring_view argument) {
  std::wstring text = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t c : argument) {
    if (c == L'"') text.append(backslashes + 1, L'\\');
    backslashes = c == L'\\' ? backslashes + 1 : 0;
    text += c;
  }
  return text.append(backslashes, L'\\') + L"\"";
}

}  // namespace platform
}  // namespace mirvane
