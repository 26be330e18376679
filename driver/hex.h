#pragma once

#include "platform/code_page.h"

namespace mirvane {

/// The number that the hexadecimal digits at the start of `text` form; 0 when there are none.
constexpr int hexValue(TextView text) {
  int value = 0;
  for (const char16_t c : text) {
    if (c >= u'0' && c <= u'9') {
      value = value * 16 + (c - u'0');
    } else if ((c >= u'A' && c <= u'F') || (c >= u'a' && c <= u'f')) {
      value = value * 16 + ((c | 0x20) - u'a') + 10;
    } else {
      break;
    }
  }
  return value;
}

}  // namespace mirvane
