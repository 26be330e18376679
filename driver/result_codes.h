#pragma once

#include <cstdint>

#include "platform/code_page.h"

namespace mirvane {

// What the device ends by itself.
constexpr std::int16_t kBusy = 14;
constexpr std::int16_t kBusyWithTaxAuthority = 146;
constexpr std::int16_t kCardPaymentInProgress = 158;

// What Result tells of the port and the link; the device's own codes are greater than 0.
constexpr std::int16_t kCannotOpen = -1;
constexpr std::int16_t kCannotConfigure = -2;
constexpr std::int16_t kNoAnswer = -3;           ///< network: no datagram came back, four times; or nothing was told
constexpr std::int16_t kNoAnswerToCommand = -4;  ///< serial line: seen only while the exchange is being repeated
constexpr std::int16_t kNotOpen = -6;
constexpr std::int16_t kNotNow = -207;  ///< network: NAK

/// The text of kNoAnswer. Its first letter is a Latin one: programs in the field compare it.
constexpr TextView kNoAnswerText = u"H ταμειακή δεν Απαντά!";

}  // namespace mirvane
