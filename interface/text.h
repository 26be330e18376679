#pragma once

#include <vector>

#include "platform/code_page.h"

namespace mirvane {

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

/// One of the pieces, empty when there are not so many.
Text pieceAt(const std::vector<Text>& pieces, std::size_t i);

/// The fields of the last reply that was long enough, shared by everything that reads from the device.
std::vector<Text>& replyFields();

/// Cuts a reply at "/" and keeps its own fields in replyFields(): the first three pieces (result and status bytes) and
/// the last one are dropped. A reply of fewer than five pieces leaves replyFields() as it was.
void splitReply(const Text& reply);

}  // namespace mirvane
