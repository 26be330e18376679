#include "emulator/money.h"

#include <charconv>

namespace mirvane::emulator {

std::optional<std::int64_t> parseFixed(std::string_view text, int decimals) {
  const bool negative = text.starts_with('-');
  if (negative) text.remove_prefix(1);
  const std::size_t point = text.find('.');
  const std::string_view fraction = point == std::string_view::npos ? "" : text.substr(point + 1);
  if (point != std::string_view::npos && (fraction.empty() || fraction.size() > static_cast<std::size_t>(decimals))) {
    return std::nullopt;
  }
  std::string digits(text.substr(0, point));
  if (digits.empty()) return std::nullopt;
  digits.append(fraction).append(static_cast<std::size_t>(decimals) - fraction.size(), '0');
  if (digits.find_first_not_of("0123456789") != std::string::npos) return std::nullopt;
  std::int64_t value = 0;
  if (std::from_chars(digits.data(), digits.data() + digits.size(), value).ec != std::errc()) return std::nullopt;
  return negative ? -value : value;
}

std::string formatFixed(std::int64_t value, int decimals) {
  std::string digits = std::to_string(value < 0 ? -value : value);
  const auto places = static_cast<std::size_t>(decimals);
  if (digits.size() <= places) digits.insert(0, places + 1 - digits.size(), '0');
  if (places > 0) digits.insert(digits.size() - places, 1, '.');
  return (value < 0 ? "-" : "") + digits;
}

}  // namespace mirvane::emulator
