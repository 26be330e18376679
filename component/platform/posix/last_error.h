#pragma once

#include <cerrno>
#include <system_error>

#include "platform/ports.h"
#include "text/code_page.h"

namespace mirvane::platform {

/// Why the system refused the latest call.
inline SystemError lastError() {
  const int number = errno;
  return {number, fromUtf8(std::generic_category().message(number))};
}

}  // namespace mirvane::platform
