#pragma once

#include <cstdint>

#include "text/text.h"

namespace mirvane {

/// The catalogue's messages that the component itself uses.
namespace message {
constexpr std::int32_t kBoxTitle = 2;
constexpr std::int32_t kPortNotOpen = 91;
constexpr std::int32_t kPortNotConfigured = 92;  ///< followed by the port
constexpr std::int32_t kVatUnchanged = 93;
}  // namespace message

constexpr std::uint8_t kGreek = 0;
constexpr std::uint8_t kEnglish = 1;

/// The text of a message, from "Lang.dat" in the component's folder. The file is read on every call, so that a
/// technician can replace it. A message that is blank in the file gives "Message #" and the numbers; if the file cannot
/// be read or ends before the message, the text is empty.
///
/// The file: one byte L, the number of languages, then one record per message: L fields of 100 characters in code page
/// 1253, padded with blanks, and a two-byte line end. "~" is a line break; a double quote ends the text.
Text langMessage(std::int32_t msgNo, std::uint8_t lang = kGreek);

}  // namespace mirvane
