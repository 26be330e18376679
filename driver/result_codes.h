#pragma once

#include <cstdint>

namespace mirvane {

// What Result tells of the port and the link; the device's own codes are greater than 0.
constexpr std::int16_t kCannotOpen = -1;
constexpr std::int16_t kCannotConfigure = -2;
constexpr std::int16_t kNoAnswer = -3;           ///< network: no datagram came back, four times
constexpr std::int16_t kNoAnswerToCommand = -4;  ///< serial line: seen only while the exchange is being repeated
constexpr std::int16_t kNotOpen = -6;
constexpr std::int16_t kNotNow = -207;  ///< network: NAK

}  // namespace mirvane
