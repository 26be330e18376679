#include "text/code_page.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace mirvane {
namespace {

// The upper half of code page 1253. Codes without a character map as in the system: to the control character of the
// same number, or to the private-use area, so that no byte is lost in a text.
constexpr std::array<char16_t, 128> kUpperHalf = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 0x80
    0x0088, 0x2030, 0x008A, 0x2039, 0x008C, 0x008D, 0x008E, 0x008F,  // 0x88
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 0x90
    0x0098, 0x2122, 0x009A, 0x203A, 0x009C, 0x009D, 0x009E, 0x009F,  // 0x98
    0x00A0, 0x0385, 0x0386, 0x00A3, 0x00A4, 0x00A5, 0x00A6, 0x00A7,  // 0xA0
    0x00A8, 0x00A9, 0xF8F9, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x2015,  // 0xA8
    0x00B0, 0x00B1, 0x00B2, 0x00B3, 0x0384, 0x00B5, 0x00B6, 0x00B7,  // 0xB0
    0x0388, 0x0389, 0x038A, 0x00BB, 0x038C, 0x00BD, 0x038E, 0x038F,  // 0xB8
    0x0390, 0x0391, 0x0392, 0x0393, 0x0394, 0x0395, 0x0396, 0x0397,  // 0xC0
    0x0398, 0x0399, 0x039A, 0x039B, 0x039C, 0x039D, 0x039E, 0x039F,  // 0xC8
    0x03A0, 0x03A1, 0xF8FA, 0x03A3, 0x03A4, 0x03A5, 0x03A6, 0x03A7,  // 0xD0
    0x03A8, 0x03A9, 0x03AA, 0x03AB, 0x03AC, 0x03AD, 0x03AE, 0x03AF,  // 0xD8
    0x03B0, 0x03B1, 0x03B2, 0x03B3, 0x03B4, 0x03B5, 0x03B6, 0x03B7,  // 0xE0
    0x03B8, 0x03B9, 0x03BA, 0x03BB, 0x03BC, 0x03BD, 0x03BE, 0x03BF,  // 0xE8
    0x03C0, 0x03C1, 0x03C2, 0x03C3, 0x03C4, 0x03C5, 0x03C6, 0x03C7,  // 0xF0
    0x03C8, 0x03C9, 0x03CA, 0x03CB, 0x03CC, 0x03CD, 0x03CE, 0xF8FB,  // 0xF8
};

struct Code {
  char16_t character;
  std::uint8_t byte;
};

// kUpperHalf reversed, sorted by character.
constexpr std::array<Code, 128> kCodes = [] {
  std::array<Code, 128> codes{};
  for (std::size_t i = 0; i < codes.size(); ++i) codes[i] = {kUpperHalf[i], static_cast<std::uint8_t>(0x80 + i)};
  std::sort(codes.begin(), codes.end(), [](Code a, Code b) { return a.character < b.character; });
  return codes;
}();

// The Latin letters with marks that the code page lacks, from U+00C0 on, as the plain letters that the system uses
// instead on a Greek machine; "." where it has none.
constexpr char16_t kFirstMarked = 0x00C0;
constexpr std::string_view kPlainLetters =
    "AAAAAA.CEEEEIIII"  // 00C0
    ".NOOOOO.OUUUUY.."  // 00D0
    "aaaaaa.ceeeeiiii"  // 00E0
    ".nooooo.ouuuuy.y"  // 00F0
    "AaAaAaCcCcCcCcDd"  // 0100
    "DdEeEeEeEeEeGgGg"  // 0110
    "GgGgHhHhIiIiIiIi"  // 0120
    "I...JjKk.LlLlLl."  // 0130
    ".LlNnNnNn...OoOo"  // 0140
    "Oo..RrRrRrSsSsSs"  // 0150
    "SsTtTtTtUuUuUuUu"  // 0160
    "UuUuWwYyYZzZzZz."  // 0170
    "b..............."  // 0180
    ".......I..l....O"  // 0190
    "Oo.........t..TU"  // 01A0
    "u..............."  // 01B0
    ".............AaI"  // 01C0
    "iOoUuUuUuUuUu.Aa"  // 01D0
    "....GgGgKkOoOo.."  // 01E0
    "j";                // 01F0

constexpr char plainLetter(char16_t c) {
  const std::size_t index = c < kFirstMarked ? kPlainLetters.size() : c - kFirstMarked;
  return index < kPlainLetters.size() && kPlainLetters[index] != '.' ? kPlainLetters[index] : '\0';
}

constexpr bool isHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool isLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void appendUtf8(std::string& out, char32_t c) {
  const auto put = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
  if (c < 0x80) {
    put(c);
  } else if (c < 0x800) {
    put(0xC0 | (c >> 6));
    put(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    put(0xE0 | (c >> 12));
    put(0x80 | ((c >> 6) & 0x3F));
    put(0x80 | (c & 0x3F));
  } else {
    put(0xF0 | (c >> 18));
    put(0x80 | ((c >> 12) & 0x3F));
    put(0x80 | ((c >> 6) & 0x3F));
    put(0x80 | (c & 0x3F));
  }
}

constexpr char32_t kReplacement = 0xFFFD;

}  // namespace

std::string toCodePage(TextView text, bool* replaced) {
  std::string bytes;
  bytes.reserve(text.size());
  bool lost = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t c = text[i];
    if (c < 0x80) {
      bytes.push_back(static_cast<char>(c));
      continue;
    }
    const auto* code = std::lower_bound(kCodes.begin(), kCodes.end(), c,
                                        [](Code entry, char16_t wanted) { return entry.character < wanted; });
    if (code != kCodes.end() && code->character == c) {
      bytes.push_back(static_cast<char>(code->byte));
      continue;
    }
    if (const char plain = plainLetter(c)) {
      bytes.push_back(plain);
      continue;
    }
    if (isHighSurrogate(c) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) ++i;
    bytes.push_back('?');
    lost = true;
  }
  if (replaced != nullptr) *replaced = lost;
  return bytes;
}

Text fromCodePage(std::string_view bytes) {
  Text text;
  text.reserve(bytes.size());
  for (const char byte : bytes) {
    const auto code = static_cast<std::uint8_t>(byte);
    text.push_back(code < 0x80 ? char16_t{code} : kUpperHalf[code - 0x80U]);
  }
  return text;
}

std::string toUtf8(TextView text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t c = text[i];
    if (isHighSurrogate(text[i]) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
      c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00U);
    } else if (c >= 0xD800 && c < 0xE000) {
      c = kReplacement;
    }
    appendUtf8(out, c);
  }
  return out;
}

Text fromUtf8(std::string_view bytes) {
  Text text;
  text.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size();) {
    const auto lead = static_cast<std::uint8_t>(bytes[i]);
    const std::size_t length = lead < 0x80           ? 1
                               : (lead >> 5) == 0x6  ? 2
                               : (lead >> 4) == 0xE  ? 3
                               : (lead >> 3) == 0x1E ? 4
                                                     : 0;
    char32_t c = length == 1 ? lead : length == 0 ? kReplacement : lead & (0x7FU >> length);
    bool wellFormed = length != 0 && i + length <= bytes.size();
    for (std::size_t k = 1; wellFormed && k < length; ++k) {
      const auto next = static_cast<std::uint8_t>(bytes[i + k]);
      wellFormed = (next & 0xC0) == 0x80;
      c = (c << 6) | (next & 0x3FU);
    }
    constexpr std::array<char32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
    wellFormed = wellFormed && c >= kSmallest[length] && c < 0x110000 && (c < 0xD800 || c >= 0xE000);
    if (!wellFormed) {
      text.push_back(char16_t{kReplacement});
      ++i;
      continue;
    }
    if (c >= 0x10000) {
      text.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
      text.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
    } else {
      text.push_back(static_cast<char16_t>(c));
    }
    i += length;
  }
  return text;
}

}  // namespace mirvane
