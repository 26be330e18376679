#pragma once

#include <string>

namespace mirvane {

// A device that talks without end must eat neither the till's memory nor its time.
constexpr std::size_t kReplyLimit = std::size_t{1} << 20U;
constexpr std::size_t kForgottenAtOnce = std::size_t{1} << 16U;  // so that forgetting costs nothing a byte

/// Adds what came in; past the limit the oldest bytes go.
inline void append(std::string& received, std::string_view chunk) {
  received += chunk;
  if (received.size() > kReplyLimit) received.erase(0, received.size() - kReplyLimit + kForgottenAtOnce);
}

}  // namespace mirvane
