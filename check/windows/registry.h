#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/windows/windows.h"

namespace mirvane::check {

/// The text of a value, or of the key itself if `name` is null; empty if there is none. `view` selects the half for
/// 32-bit or for 64-bit programs.
std::wstring registryText(HKEY root, const std::wstring& key, const wchar_t* name = nullptr, REGSAM view = 0);

/// All texts of a key, with their names.
std::vector<std::pair<std::wstring, std::wstring>> registryTexts(HKEY root, const std::wstring& key);

}  // namespace mirvane::check
