#pragma once

#include <string>
#include <string_view>

#include "text/text.h"

namespace mirvane {

/// The bytes of `text` in code page 1253 (Windows Greek), the code page of the device, of the message catalogue and
/// of the journal files, whatever the machine's own code page is. A Latin letter with a mark that has no code
/// there becomes its plain letter (é is e, š is s). Any other character with no code becomes "?"; a surrogate pair is
/// one character. When `replaced` is given it is set to whether there was a "?" of this kind.
std::string toCodePage(TextView text, bool* replaced = nullptr);

/// The text of `bytes` in code page 1253. Every byte value has a character, so bytes survive the way there and back.
Text fromCodePage(std::string_view bytes);

std::string toUtf8(TextView text);

/// Ill-formed input yields U+FFFD for each offending byte.
Text fromUtf8(std::string_view bytes);

}  // namespace mirvane
