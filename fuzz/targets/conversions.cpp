// The bytes of a type's conversions: texts, numbers and code pages, there and back. An input: eight bytes of a number,
// then a text.

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "fuzz/machine.h"
#include "text/code_page.h"
#include "text/number_text.h"
#include "text/numbers.h"
#include "text/text.h"

namespace mirvane::fuzz {
namespace {

void checkText(const std::string& bytes) {
  const Text text = fromCodePage(bytes);
  bool isReplaced = true;
  require(text.size() == bytes.size(), "a character a byte");
  require(toCodePage(text, &isReplaced) == bytes && !isReplaced, "a byte survives the way there and back");
  require(fromUtf8(toUtf8(text)) == text, "UTF-8 there and back");

  const Text decoded = fromUtf8(bytes);
  require(fromUtf8(toUtf8(decoded)) == decoded, "what was read from UTF-8 is well formed");
  Text raw(bytes.size() / 2, u' ');  // with lone surrogates
  for (std::size_t i = 0; i < raw.size(); ++i) {
    const auto half = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
    raw[i] = static_cast<char16_t>(half(2 * i) << 8U | half(2 * i + 1));
  }
  require(fromUtf8(toUtf8(raw)).size() == raw.size(), "each unit is told");
  for (const Text& any : {decoded, raw}) {
    const std::string page = toCodePage(any, &isReplaced);
    const bool hasNew = std::ranges::count(page, '?') > std::ranges::count(any, u'?');
    require(isReplaced == hasNew && page.size() <= any.size(), "what is replaced is told");
    const Text clean = cleanText(any);
    require(clean.size() == any.size() && clean.find(u'/') == Text::npos && cleanText(clean) == clean, "clean");
    Text joined;
    for (const Text& piece : split(any, u'/')) joined += piece + u'/';
    require(joined == any + u'/', "pieces");
    const TextView inner = trim(any);
    require(inner.empty() || (inner.front() != u' ' && inner.back() != u' '), "trimmed");
    require(any.starts_with(left(any, 30)) && left(any, 30).size() == std::min<std::size_t>(any.size(), 30), "left");
  }
}

void checkNumberIn(const std::string& bytes) {
  const Text text = fromCodePage(bytes);
  const auto number = parseNumber(text);
  const bool isPlain = std::ranges::all_of(bytes, [](char c) { return c > ' ' && c != ',' && c < 0x7F; });
  if (isPlain && number) {
    require(*number == std::strtod(bytes.c_str(), nullptr), "the number that the C library reads");
    require(leadingNumber(text) == *number, "the whole text is the number at its start");
  }
  const Value value(text);
  double converted = 0;
  require(passes([&] { converted = convertTo<double>(value); }) == (number && std::isfinite(*number)), "as a real");
  std::int16_t small = 0;
  const bool fits = passes([&] { small = convertTo<std::int16_t>(value); });
  require(fits == (number && std::nearbyint(*number) >= -32768 && std::nearbyint(*number) <= 32767), "as an integer");
  require(toInt(text) == small, "0 for what is none");
}

void checkNumber(double number) {
  const Text text = numberText(number);
  // The greatest numbers of all are rounded up to what is none any more.
  if (!(std::abs(number) < 1.79769313486231e308)) return;
  const auto read = parseNumber(text);
  require(read && std::abs(*read - number) <= std::abs(number) * 1e-14 + 1e-300, "15 digits");
  require(numberText(*read) == text || std::abs(number) < 1e-300, "15 digits are the same again");
  if (std::abs(number) > 1e15) {
    formatAmount(number);
    return;
  }
  for (const auto& [written, step] : {std::pair(formatAmount(number), 0.01), {formatQuantity(number), 0.001}}) {
    const auto back = parseNumber(written);
    require(back && std::abs(*back - number) <= step * 0.500001 + std::abs(number) * 1e-14, "the nearest");
    require(written[0] != u'-' || *back != 0, "a zero has no sign");
    const std::size_t decimals = written.size() - written.find(u'.') - 1;
    require(decimals == (step == 0.01 ? 2 : 3), "its decimals");
  }
  const Value value(number);
  std::int32_t whole = 0;
  if (passes([&] { whole = convertTo<std::int32_t>(value); })) require(std::abs(whole - number) <= 0.5, "the nearest");
  // Whatever a variable's type, what it cannot hold is the nearest, and no failure becomes a 0.
  std::uint8_t byte = 0;
  require(Argument(Reference(&byte)).store(value), "a number is stored");
  require(byte != 0 || std::abs(number) <= 0.5, "no failure reads as 0");
}

void run(Input input) {
  checkNumber(input.real());
  const std::string bytes = input.rest();
  checkText(bytes);
  checkNumberIn(bytes);
}

}  // namespace
}  // namespace mirvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  mirvane::fuzz::run({data, size});
  return 0;
}
