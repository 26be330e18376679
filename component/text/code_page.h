#pragma once

#include <string>
#include <string_view>

#include "text/text.h"

namespace mirvane {

/// The bytes of `text` in code page 1253 (Windows Greek), which the register, the message catalogue and the journal
/// files use, whatever the machine's own code page is. A Latin letter with a mark that the code page lacks becomes the
/// plain letter (é is e, š is s). Any other character that it lacks becomes "?"; a surrogate pair is one character.
/// `replaced`, if given, is set to whether there was such a "?".
std::string toCodePage(TextView text, bool* replaced = nullptr);

/// The text of `bytes` in code page 1253. Every byte value has a character, so converting back gives the same bytes.
Text fromCodePage(std::string_view bytes);

std::string toUtf8(TextView text);

/// Converts UTF-8. Each invalid byte gives U+FFFD.
Text fromUtf8(std::string_view bytes);

}  // namespace mirvane
