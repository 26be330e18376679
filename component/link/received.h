#pragma once

#include <string>

namespace mirvane {

// A register that sends without end must use up neither the till's memory nor its time.
constexpr std::size_t kReplyLimit = std::size_t{1} << 20U;
constexpr std::size_t kForgottenAtOnce = std::size_t{1} << 16U;  // so that dropping costs nothing per byte

/// Appends received bytes; beyond the limit the oldest are dropped.
inline void append(std::string& received, std::string_view chunk) {
  received += chunk;
  if (received.size() > kReplyLimit) received.erase(0, received.size() - kReplyLimit + kForgottenAtOnce);
}

}  // namespace mirvane
