#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mirvane {

/// A text as the automation layer sees it: UTF-16 code units.
using Text = std::u16string;
using TextView = std::u16string_view;

/// Replaces the accented Greek letters in `text` by the plain ones, and returns it too. "ύ" keeps its accent, and so do
/// letters with dialytika: the device prints them.
Text stripAccents(Text& text);

/// Free text made safe for a command field: accents stripped, every "/" turned into "-".
Text cleanText(TextView text);

/// The first `count` characters.
Text left(TextView text, std::size_t count);

/// Without the blanks at both ends.
TextView trim(TextView text);

/// The pieces between the separators; one more than there are separators.
std::vector<Text> split(TextView text, char16_t separator);

}  // namespace mirvane
