#include "recorder/record_line.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>

#include "text/code_page.h"

namespace mirvane::recorder {
namespace {

constexpr std::array<std::string_view, 14> kKinds = {"started", "call",   "ended",    "open",    "close",
                                                     "broken",  "sent",   "received", "dropped", "repeat",
                                                     "wait",    "waited", "box",      "lost"};
constexpr std::array<std::string_view, 32> kControls = {
    "NUL", "SOH", "STX", "ETX", "EOT", "ENQ", "ACK", "BEL", "BS",  "TAB", "LF",  "VT",  "FF", "CR", "SO", "SI",
    "DLE", "DC1", "DC2", "DC3", "DC4", "NAK", "SYN", "ETB", "CAN", "EM",  "SUB", "ESC", "FS", "GS", "RS", "US"};
constexpr std::string_view kLessThan = "LT";
constexpr std::string_view kDelete = "DEL";
constexpr char kDeleteByte = 0x7F;

std::string hex(std::uint8_t byte) {
  constexpr std::string_view kHexDigits = "0123456789ABCDEF";
  return {'x', kHexDigits[byte / 16], kHexDigits[byte % 16]};
}

// The name of a character that is written by name; empty for any other.
std::string_view nameOf(char c) {
  if (c >= 0 && c < ' ') return kControls[static_cast<std::uint8_t>(c)];
  if (c == '<') return kLessThan;
  return c == kDeleteByte ? kDelete : std::string_view{};
}

std::optional<char> byteNamed(std::string_view name) {
  if (name == kLessThan) return '<';
  if (name == kDelete) return kDeleteByte;
  const auto* control = std::find(kControls.begin(), kControls.end(), name);
  if (control != kControls.end()) return static_cast<char>(control - kControls.begin());
  unsigned value = 0;
  if (name.size() != 3 || name.front() != 'x') return {};
  if (std::from_chars(name.data() + 1, name.data() + 3, value, 16).ptr != name.data() + 3 || value < 0x80) return {};
  return static_cast<char>(value);
}

// Bytes that have no character in the code page become C1 controls or private-use characters.
bool hasCharacter(char16_t c) { return (c < 0x80 || c >= 0xA0) && (c < 0xE000 || c > 0xF8FF); }

std::string shown(const Event& event) {
  std::string line;
  for (const char c : event.text) {
    if (const std::string_view name = nameOf(c); !name.empty()) {
      line.append("<").append(name).append(">");
    } else if (c >= 0 || !isOfLine(event.kind)) {
      line += c;
    } else if (const Text character = fromCodePage({&c, 1}); hasCharacter(character.front())) {
      line += toUtf8(character);
    } else {
      line.append("<").append(hex(static_cast<std::uint8_t>(c))).append(">");
    }
  }
  return line;
}

// The original bytes of a text: those of the line are in its code page.
std::optional<std::string> own(std::string_view text, bool ofLine) {
  if (!ofLine) return std::string(text);
  bool replaced = false;
  const Text characters = fromUtf8(text);
  std::string bytes = toCodePage(characters, &replaced);
  // Anything that only resembles what was sent is rejected.
  if (replaced || fromCodePage(bytes) != characters) return {};
  return bytes;
}

std::optional<std::string> read(std::string_view shown, bool ofLine) {
  std::string bytes;
  for (;;) {
    const std::size_t open = std::min(shown.find('<'), shown.size());
    const auto piece = own(shown.substr(0, open), ofLine);
    if (!piece) return {};
    bytes += *piece;
    if (open == shown.size()) return bytes;
    const std::size_t close = shown.find('>', open);
    if (close == std::string_view::npos) return {};
    const auto byte = byteNamed(shown.substr(open + 1, close - open - 1));
    if (!byte || (*byte < 0 && !ofLine)) return {};
    bytes += *byte;
    shown.remove_prefix(close + 1);
  }
}

using Milliseconds = std::chrono::milliseconds;

// Numbers at fixed places of a line that matches `pattern`, in which "0" stands for any digit.
class Stamp {
 public:
  static constexpr std::string_view kPattern = "0000-00-00 00:00:00.000 +00:00 ";

  explicit Stamp(std::string_view line) : line_(line) {}
  bool isValid() const {
    if (line_.size() < kPattern.size()) return false;
    for (std::size_t i = 0; i < kPattern.size(); ++i) {
      const bool isDigit = line_[i] >= '0' && line_[i] <= '9';
      if (kPattern[i] == '0' ? !isDigit : line_[i] != kPattern[i] && (kPattern[i] != '+' || line_[i] != '-')) {
        return false;
      }
    }
    return true;
  }
  int number(std::size_t at, std::size_t digits) const {
    int value = 0;
    std::from_chars(line_.data() + at, line_.data() + at + digits, value);
    return value;
  }
  std::int64_t time() const {
    using namespace std::chrono;
    const year_month_day date{year(number(0, 4)), month(static_cast<unsigned>(number(5, 2))),
                              day(static_cast<unsigned>(number(8, 2)))};
    const minutes zone = (line_[24] == '-' ? -1 : 1) * (hours(number(25, 2)) + minutes(number(28, 2)));
    return Milliseconds(sys_days(date).time_since_epoch() + hours(number(11, 2)) + minutes(number(14, 2)) - zone +
                        seconds(number(17, 2)) + Milliseconds(number(20, 3)))
        .count();
  }

 private:
  std::string_view line_;
};

}  // namespace

std::string formatted(const Event& event, int zone) {
  using namespace std::chrono;
  const sys_time<Milliseconds> local{Milliseconds(event.time) + minutes(zone)};
  const auto day = floor<days>(local);
  const year_month_day date(day);
  const hh_mm_ss time(local - day);
  const int ahead = zone < 0 ? -zone : zone;
  std::array<char, 96> head{};
  std::snprintf(head.data(), head.size(), "%04d-%02u-%02u %02d:%02d:%02d.%03d %c%02d:%02d %-8s %6d",
                static_cast<int>(date.year()), static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count()), static_cast<int>(time.subseconds().count()),
                zone < 0 ? '-' : '+', ahead / 60, ahead % 60, kKinds[static_cast<std::size_t>(event.kind)].data(),
                static_cast<int>(event.number));
  std::string line = head.data();
  if (!event.text.empty()) line.append(" ").append(shown(event));
  return line + "\r\n";
}

std::optional<Event> parsedEvent(std::string_view line) {
  const Stamp stamp(line);
  if (!stamp.isValid()) return {};
  Event event{stamp.time(), {}, 0, {}};
  line.remove_prefix(Stamp::kPattern.size());
  const auto* kind = std::find(kKinds.begin(), kKinds.end(), line.substr(0, line.find(' ')));
  if (kind == kKinds.end()) return {};
  event.kind = static_cast<EventKind>(kind - kKinds.begin());
  line.remove_prefix(kind->size());
  line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
  const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), event.number);
  if (error != std::errc{}) return {};
  line.remove_prefix(static_cast<std::size_t>(end - line.data()));
  if (line.empty()) return event;
  const auto text = read(line.substr(1), isOfLine(event.kind));
  if (line.front() != ' ' || !text) return {};
  event.text = *text;
  return event;
}

}  // namespace mirvane::recorder
