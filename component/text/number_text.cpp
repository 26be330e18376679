#include "text/number_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string>
#include <system_error>

namespace mirvane {
namespace {

constexpr TextView kBlanks = u" \t\r\n";

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

TextView trimmed(TextView text) {
  const auto first = text.find_first_not_of(kBlanks);
  if (first == TextView::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// Keeps only characters that numbers are written with; any other becomes one that no number contains.
std::string narrowed(TextView text) {
  std::string narrow;
  narrow.reserve(text.size());
  for (const char16_t c : text) narrow.push_back(c == u'E' ? 'e' : c > 0 && c < 0x80 ? static_cast<char>(c) : '?');
  return narrow;
}

// How many characters of `s` form a number: sign, digits with one point, exponent. 0 if there is none.
std::size_t numberLength(std::string_view s) {
  std::size_t i = !s.empty() && (s[0] == '+' || s[0] == '-') ? 1 : 0;
  std::size_t digits = 0;
  bool point = false;
  for (; i < s.size() && (isDigit(s[i]) || (s[i] == '.' && !point)); ++i) {
    if (s[i] == '.') {
      point = true;
    } else {
      ++digits;
    }
  }
  if (digits == 0) return 0;
  if (i < s.size() && s[i] == 'e') {
    std::size_t k = i + 1;
    if (k < s.size() && (s[k] == '+' || s[k] == '-')) ++k;
    if (k < s.size() && isDigit(s[k])) {
      while (k < s.size() && isDigit(s[k])) ++k;
      i = k;
    }
  }
  return i;
}

double valueOf(std::string_view s) {
  if (s.starts_with('+')) s.remove_prefix(1);
  double value = 0;
  const auto [end, error] = std::from_chars(s.data(), s.data() + s.size(), value);
  // from_chars reports both ends of the range alike. A number too small for a double is 0 here; one too large is
  // infinite.
  if (error == std::errc::result_out_of_range && s.find("e-") != std::string_view::npos) return 0.0;
  return error == std::errc{} ? value : std::copysign(HUGE_VAL, s.starts_with('-') ? -1 : 1);
}

}  // namespace

std::optional<double> parseNumber(TextView text) {
  std::string s = narrowed(trimmed(text));
  if (const auto comma = s.find(','); comma != std::string::npos && s.find('.') == std::string::npos) s[comma] = '.';
  const std::size_t length = numberLength(s);
  if (length == 0 || length != s.size()) return std::nullopt;
  return valueOf(s);
}

double leadingNumber(TextView text) {
  const auto first = text.find_first_not_of(kBlanks);
  if (first == TextView::npos) return 0;
  const std::string s = narrowed(text.substr(first));
  const std::size_t length = numberLength(s);
  return length == 0 ? 0 : valueOf(std::string_view(s).substr(0, length));
}

Text numberText(double value) {
  if (value == 0) return u"0";  // a zero has no sign
  std::array<char, 32> buffer{};
  const auto end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::general, 15).ptr;
  return {buffer.data(), end};
}

Text numberText(std::int32_t value) {
  std::array<char, 16> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
  return {buffer.data(), end};
}

}  // namespace mirvane
