#pragma once

#include <cstdint>

#include "text/text.h"

namespace mirvane {

/// The messages of the catalogue that the component itself uses.
namespace message {
constexpr std::int32_t kBoxTitle = 2;
constexpr std::int32_t kPortNotOpen = 91;
constexpr std::int32_t kPortNotConfigured = 92;  ///< followed by the port
constexpr std::int32_t kVatUnchanged = 93;
}  // namespace message

constexpr std::uint8_t kGreek = 0;
constexpr std::uint8_t kEnglish = 1;

/// The text of a message in a language, from "Lang.dat" in the component's folder; read anew on every call, so that a
/// technician may replace the file. A message that the file leaves blank gives "Message #" and the numbers; a file that
/// cannot be read, or that ends before the message, gives an empty text.
///
/// The file: one byte L, the number of languages, then one record a message: L fields of 100 characters in code page
/// 1253, padded with blanks, and two bytes of line end. "~" is a line break; a double quote ends the text.
Text langMessage(std::int32_t msgNo, std::uint8_t lang = kGreek);

}  // namespace mirvane
