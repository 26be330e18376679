#include "emulator/faults.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <utility>

#include "emulator/device.h"
#include "emulator/money.h"
#include "text/code_page.h"

namespace mirvane::emulator {
namespace {

using Kind = Fault::Kind;

constexpr std::uint32_t kAlways = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint32_t kGreatestTime = 100'000'000;
constexpr std::uint32_t kLongestUnplugging = 86'400;

enum class Argument { kNone, kNumber, kNumberOrDefault, kHexByte, kHexBytesOrDefault, kBusyCode, kText };

struct Row {
  std::string_view name;
  Kind kind;
  Argument argument;
  /// The number of a fault that takes none, and the default where one may be left out.
  std::uint32_t number;
  /// What the till sends can be struck by it too.
  bool isOnWay = false;
};

constexpr Row kRows[] = {
    {"silence", Kind::kSilence, Argument::kNone, 0},
    {"nak", Kind::kNak, Argument::kNone, 0},
    {"lost", Kind::kLost, Argument::kNone, 0, true},
    {"ack-only", Kind::kAckOnly, Argument::kNone, 0},
    {"late", Kind::kLate, Argument::kNumber, 0},
    {"delayed", Kind::kDelayed, Argument::kNumber, 0, true},
    {"split", Kind::kSplit, Argument::kNumberOrDefault, 25},
    {"duplicate", Kind::kDuplicate, Argument::kNumberOrDefault, 100, true},
    {"half", Kind::kHalf, Argument::kNone, 0, true},
    {"cut", Kind::kCut, Argument::kNumber, 0, true},
    {"short", Kind::kShort, Argument::kNone, 0},
    {"endless", Kind::kEndless, Argument::kNumberOrDefault, 1 << 20},
    {"noise", Kind::kNoise, Argument::kHexBytesOrDefault, 0, true},
    {"noise-within", Kind::kNoiseWithin, Argument::kHexBytesOrDefault, 0, true},
    {"status", Kind::kStatus, Argument::kHexByte, 0},
    {"unplug", Kind::kUnplug, Argument::kNumber, 0},
    {"unplug-after", Kind::kUnplugAfter, Argument::kNumber, 0},
    {"busy", Kind::kCode, Argument::kBusyCode, static_cast<std::uint32_t>(Code::kBusy)},
    {"code", Kind::kCode, Argument::kNumber, 0},
    {"reply", Kind::kReply, Argument::kText, 0},
    {"paper-end", Kind::kPrinter, Argument::kNone, kPrinterPaperEnd},
    {"device-error", Kind::kPrinter, Argument::kNone, kPrinterError},
    {"offline", Kind::kPrinter, Argument::kNone, kPrinterOffline},
    {"printer-silent", Kind::kPrinter, Argument::kNone, kPrinterSilent},
    {"flash-near-full", Kind::kPrinter, Argument::kNone, kPrinterFlashNearFull},
};

constexpr std::pair<std::string_view, Fault::At> kSent[] = {
    {"till-frame", Fault::At::kTillFrame}, {"till-ack", Fault::At::kTillAck}, {"till-enq", Fault::At::kTillEnq}};

std::optional<std::uint32_t> parse(std::string_view text, int base = 10) {
  std::uint32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (error != std::errc() || end != text.data() + text.size() || value > kGreatestTime) return std::nullopt;
  return value;
}

/// Percent, as a number in Faults::kAll.
std::optional<std::uint32_t> parseRate(std::string_view text) {
  const auto rate = parseFixed(text, 3);
  if (!rate || *rate > Faults::kAll) return std::nullopt;
  return static_cast<std::uint32_t>(*rate);
}

[[noreturn]] void fail(const std::string& what, std::string_view where) {
  throw FaultError(what + (where.empty() ? "" : " \"" + std::string(where) + "\""));
}

/// The words of a rule, taken from the left.
class Words {
 public:
  explicit Words(std::string_view text) : rest_(text) { skipBlanks(); }

  bool atEnd() const { return rest_.empty(); }
  std::string_view peek() const { return rest_.substr(0, rest_.find_first_of(" \t\r")); }
  std::string_view take() {
    const std::string_view word = peek();
    rest_.remove_prefix(word.size());
    skipBlanks();
    return word;
  }
  bool takeIf(std::string_view word) { return peek() == word && (take(), true); }
  std::string_view rest() { return std::exchange(rest_, {}); }

 private:
  void skipBlanks() {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t\r"), rest_.size()));
    rest_ = rest_.substr(0, rest_.find_last_not_of(" \t\r") + 1);
  }

  std::string_view rest_;
};

std::uint32_t takeNumber(Words& words, std::string_view behind) {
  const std::string_view word = words.take();
  const auto number = parse(word);
  if (!number) fail("a number must follow \"" + std::string(behind) + "\", not", word.empty() ? "nothing" : word);
  return *number;
}

std::string takeHexBytes(Words& words) {
  const std::string_view digits = words.take();
  std::string bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    const auto byte = parse(digits.substr(i, 2), 16);
    if (!byte || digits.size() % 2 != 0) fail("bytes are written as pairs of hexadecimal digits, not as", digits);
    bytes.push_back(static_cast<char>(*byte));
  }
  return bytes;
}

Fault::At takeAt(Words& words) {
  for (const auto& [name, at] : kSent) {
    if (words.takeIf(name)) return at;
  }
  return Fault::At::kAnswer;
}

Fault takeFault(Words& words) {
  const Fault::At at = takeAt(words);
  const std::string_view name = words.take();
  if (name.empty()) fail("the fault is missing", "");
  const Row* row = std::find_if(std::begin(kRows), std::end(kRows), [name](const Row& r) { return r.name == name; });
  if (row == std::end(kRows)) fail("unknown fault", name);
  if (at != Fault::At::kAnswer && !row->isOnWay) fail("this fault cannot hit what the till sends:", name);
  Fault fault{row->kind, row->number, {}, {}, at, row->name};
  switch (row->argument) {
    case Argument::kNone:
      break;
    case Argument::kNumberOrDefault:
      if (words.atEnd()) break;
      [[fallthrough]];
    case Argument::kNumber:
      fault.number = takeNumber(words, name);
      if (fault.kind == Kind::kCode && fault.number > 255) fail("a code is at most 255", "");
      if (fault.isUnplugging() && fault.number > kLongestUnplugging) fail("unplugging lasts at most 86400 s", "");
      break;
    case Argument::kHexByte:
      fault.bytes = words.take();
      if (fault.bytes.size() != 2 || !parse(fault.bytes, 16)) fail("two hexadecimal digits must follow", name);
      break;
    case Argument::kHexBytesOrDefault:
      fault.bytes = words.atEnd() ? std::string("\x00\xFF\x55\xAA", 4) : takeHexBytes(words);
      break;
    case Argument::kBusyCode:
      if (!words.atEnd()) fault.number = takeNumber(words, name);
      if (fault.number != 14 && fault.number != 146) fail("busy is code 14 or 146", "");
      break;
    case Argument::kText:
      fault.bytes = toCodePage(fromUtf8(words.rest()));
      if (fault.bytes.empty()) fail("a text must follow", name);
      break;
  }
  if (!words.atEnd()) fail("unexpected text after the fault:", words.rest());
  return fault;
}

}  // namespace

std::vector<std::string> faultNames() {
  std::vector<std::string> names;
  for (const Row& row : kRows) names.emplace_back(row.name);
  for (const auto& [sent, at] : kSent) {
    for (const Row& row : kRows) {
      if (row.isOnWay) names.push_back(std::string(sent).append(" ").append(row.name));
    }
  }
  return names;
}

std::string_view sentName(Fault::At at) {
  return std::find_if(std::begin(kSent), std::end(kSent), [at](const auto& sent) { return sent.second == at; })->first;
}

int Faults::add(std::string_view rule) {
  Words words(rule);
  Rule parsed;
  parsed.text = rule;
  const bool isDelayed = words.takeIf("after");
  if (isDelayed) parsed.skip = takeNumber(words, "after");
  if (words.takeIf("on")) {
    parsed.prefix = toCodePage(fromUtf8(words.take()));
    if (parsed.prefix.empty()) fail("the beginning of a command must follow", "on");
  } else if (!words.takeIf("next") && !isDelayed) {
    fail(R"(a rule begins with "next", "on" or "after", not with)", words.peek());
  }
  const std::string_view span = words.peek();
  if (span == "always") {
    parsed.times = kAlways;
    words.take();
  } else if (!span.empty() && span[0] >= '0' && span[0] <= '9') {
    const bool isTime = span.ends_with('s');
    const bool isRate = span.ends_with('%');
    const std::string_view digits = span.substr(0, span.size() - (isTime || isRate ? 1 : 0));
    const auto number = isRate ? parseRate(digits) : parse(digits);
    if (!number || *number == 0) fail("a number of commands, of seconds (5s) or percent (0.1%) is expected, not", span);
    parsed.times = isTime || isRate ? kAlways : *number;
    if (isTime) parsed.seconds = *number;
    if (isRate) parsed.rate = *number;
    words.take();
  }
  parsed.fault = takeFault(words);
  parsed.fault.rule = rule;
  if (parsed.fault.at == Fault::At::kTillEnq && !parsed.prefix.empty()) {
    fail("an ENQ comes before its command, so its rule has no", "on");
  }
  parsed.number = ++lastNumber_;
  rules_.push_back(std::move(parsed));
  return lastNumber_;
}

bool Faults::remove(int number) {
  return std::erase_if(rules_, [number](const Rule& rule) { return rule.number == number; }) > 0;
}

bool Faults::forgetEnded(double now) {
  return std::erase_if(rules_, [now](const Rule& rule) { return rule.end > 0 && now >= rule.end; }) > 0;
}

void Faults::clear() {
  rules_.clear();
  lastNumber_ = 0;
  switches = {};
  random_.seed(seed_);
}

void Faults::addScript(std::string_view script) {
  // Text that is not UTF-8 comes from an editor that uses the code page of Greek Windows.
  const bool isUtf8 = toUtf8(fromUtf8(script)) == script;
  const std::string converted = isUtf8 ? "" : toUtf8(fromCodePage(script));
  if (!isUtf8) script = converted;
  for (int number = 1; !script.empty(); ++number) {
    const std::size_t end = std::min(script.find('\n'), script.size());
    const std::string_view line = script.substr(0, end);
    script.remove_prefix(std::min(end + 1, script.size()));
    const std::size_t begin = line.find_first_not_of(" \t\r");
    if (begin == std::string_view::npos || line[begin] == '#') continue;
    try {
      add(line);
    } catch (const FaultError& error) {
      throw FaultError("line " + std::to_string(number) + ": " + error.what());
    }
  }
}

bool Faults::applies(Rule& rule, double now) {
  if (rule.skip > 0) return --rule.skip, false;
  if (rule.seconds > 0 && rule.end == 0) rule.end = now + rule.seconds;
  if (rule.seconds > 0 && now >= rule.end) rule.times = 0;
  return rule.times > 0 && (rule.rate == kAll || random_() % kAll < rule.rate);
}

bool Faults::strikes(Fault::At at) const {
  return std::any_of(rules_.begin(), rules_.end(), [at](const Rule& rule) { return rule.fault.at == at; });
}

Fault Faults::take(std::string_view command, bool isRepeat, double now, Fault::At at) {
  Rule* taken = nullptr;
  for (Rule& rule : rules_) {
    if (rule.fault.at != at || !command.starts_with(rule.prefix)) continue;
    if (isRepeat && !rule.fault.isOnWire()) continue;
    if (applies(rule, now) && !taken) taken = &rule;
  }
  if (!taken) return {};
  Fault fault = taken->fault;
  if (taken->times != kAlways) --taken->times;
  std::erase_if(rules_, [](const Rule& rule) { return rule.times == 0; });
  return fault;
}

}  // namespace mirvane::emulator
