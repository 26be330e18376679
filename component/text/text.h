#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mirvane {

/// A text of UTF-16 code units, as automation uses it.
using Text = std::u16string;
using TextView = std::u16string_view;

/// Removes Greek accents from `text`, and also returns it. "ύ" keeps its accent, and so do letters with a diaeresis:
/// the register prints them.
Text stripAccents(Text& text);

/// Free text made safe for a command field: accents removed, every "/" replaced by "-".
Text cleanText(TextView text);

/// The first `count` characters.
Text left(TextView text, std::size_t count);

/// The text without blanks at both ends.
TextView trim(TextView text);

/// The parts between the separators; one more than there are separators.
std::vector<Text> split(TextView text, char16_t separator);

}  // namespace mirvane
