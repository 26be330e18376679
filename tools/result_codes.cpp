#include "tools/result_codes.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <set>
#include <stdexcept>

#include "protocol/device_codes.h"
#include "state/message_catalogue.h"
#include "text/code_page.h"

namespace mirvane {

/// component/catalogue/messages.txt, which the build puts into the program.
extern const std::string_view kMessagesText;

namespace {

constexpr std::string_view kComponents = "component ";

constexpr std::array<std::int16_t, 9> kOwnResults = {0,
                                                     1,
                                                     link_result::kCannotOpen,
                                                     link_result::kCannotConfigure,
                                                     link_result::kNoAnswer,
                                                     link_result::kNoAnswerToCommand,
                                                     link_result::kNotOpen,
                                                     link_result::kNotNow,
                                                     link_result::kNoDevice};

constexpr std::array<std::pair<std::int16_t, TextView>, 5> kOwnTexts = {
    {{link_result::kCannotOpen, link_result::kCannotOpenText},
     {link_result::kNoAnswer, link_result::kNoAnswerText},
     {link_result::kNoAnswerToCommand, link_result::kNoAnswerToCommandText},
     {link_result::kNotNow, link_result::kNotNowText},
     {link_result::kNoDevice, link_result::kNoDeviceText}}};

/// A passage of the file: "[...]" or "{name}", and its values by their keys.
struct Passage {
  std::string title;
  std::size_t line = 0;
  std::map<std::string, std::string, std::less<>> values;
};

[[noreturn]] void fail(std::size_t line, const std::string& what) {
  throw std::runtime_error("docs/result_codes.txt:" + std::to_string(line) + ": " + what);
}

std::vector<Passage> readPassages(std::string_view text) {
  constexpr std::array<std::string_view, 7> kKeys = {"en",      "el",     "cashier.en", "cashier.el",
                                                     "program", "repeat", "known"};
  std::vector<Passage> passages;
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (line.empty() || line.starts_with('#')) continue;
    if (line.starts_with('[') || line.starts_with('{')) {
      passages.push_back({std::string(line), number, {}});
      continue;
    }
    const std::size_t colon = line.find(": ");
    const std::string_view key = line.substr(0, colon);
    if (colon == std::string_view::npos || std::find(kKeys.begin(), kKeys.end(), key) == kKeys.end()) {
      fail(number, "neither a passage, a value nor a comment");
    }
    if (passages.empty() || !passages.back().values.emplace(key, line.substr(colon + 2)).second) {
      fail(number, "not a new value of a passage");
    }
  }
  return passages;
}

/// Takes the values of a passage, with the shared ones in the place of their names.
class Values {
 public:
  Values(const Passage& passage, const std::vector<Passage>& all) : passage_(passage), all_(all) {}

  std::string of(std::string_view key) const {
    const auto found = passage_.values.find(key);
    if (found == passage_.values.end()) fail(passage_.line, passage_.title + " lacks " + std::string(key));
    return withShared(found->second, key.ends_with("el") ? "el" : "en");
  }

  /// By the position in `words` of the value.
  std::size_t choice(std::string_view key, const std::vector<std::string_view>& words) const {
    const std::string value = of(key);
    const auto found = std::find(words.begin(), words.end(), value);
    if (found == words.end()) fail(passage_.line, passage_.title + ": " + std::string(key) + " cannot be " + value);
    return static_cast<std::size_t>(found - words.begin());
  }

  bool has(std::string_view key) const { return passage_.values.contains(key); }

 private:
  std::string withShared(std::string text, std::string_view language) const {
    for (std::size_t at = 0; (at = text.find('@', at)) != std::string::npos;) {
      const std::size_t end = std::min(text.find_first_not_of("abcdefghijklmnopqrstuvwxyz", at + 1), text.size());
      const std::string name = "{" + text.substr(at + 1, end - at - 1) + "}";
      const auto shared = std::find_if(all_.begin(), all_.end(), [&](const Passage& p) { return p.title == name; });
      if (shared == all_.end() || !shared->values.contains(language)) fail(passage_.line, "there is no " + name);
      const std::string& value = shared->values.find(language)->second;
      text.replace(at, end - at, value);
      at += value.size();
    }
    return text;
  }

  const Passage& passage_;
  const std::vector<Passage>& all_;
};

/// A message of the catalogue, in Greek as the component shows it.
std::string catalogueText(std::int32_t number) {
  constexpr std::string_view kGreekText = "\nel: ";
  const std::size_t at = kMessagesText.find(kGreekText, kMessagesText.find("\n[" + std::to_string(number) + "]"));
  const std::string_view text = kMessagesText.substr(at + kGreekText.size());
  return std::string(text.substr(0, text.find('\n')));
}

std::string textOf(const ResultCode& code) {
  if (code.isDevices) return toUtf8(deviceErrorText(code.result));
  if (code.result == link_result::kCannotConfigure) return catalogueText(message::kPortNotConfigured);
  if (code.result == link_result::kNotOpen) return catalogueText(message::kPortNotOpen);
  for (const auto& [result, text] : kOwnTexts) {
    if (result == code.result) return toUtf8(text);
  }
  return {};
}

/// Whether what is said of repeating is what the component holds to.
bool agrees(const ResultCode& code) {
  if (!code.isDevices) {
    const bool isUncertain = code.result == link_result::kNoAnswer || code.result == link_result::kNotNow;
    const bool isUnderWay = code.result == 0 || code.result == link_result::kNoAnswerToCommand;
    return (!isUncertain || code.repeating == Repeating::kAskFirst) &&
           (!isUnderWay || code.repeating == Repeating::kNo);
  }
  if (mayBeSentAgain(code.result)) {
    return code.repeating == Repeating::kYes || code.repeating == Repeating::kLater;
  }
  if (endsByItself(code.result)) return code.repeating == Repeating::kNo;
  return code.repeating != Repeating::kYes || !isCritical(code.result);
}

/// The codes of a title such as "component -1 cannot-open", "25 paper-end" or "47 48".
std::vector<ResultCode> readTitle(const Passage& passage) {
  std::string_view rest = passage.title;
  if (!rest.ends_with(']')) fail(passage.line, "a passage without an end");
  rest = rest.substr(1, rest.size() - 2);
  const bool isDevices = !rest.starts_with(kComponents);
  if (!isDevices) rest.remove_prefix(kComponents.size());
  std::vector<ResultCode> codes;
  while (!rest.empty()) {
    const std::string_view word = rest.substr(0, rest.find(' '));
    rest.remove_prefix(std::min(word.size() + 1, rest.size()));
    std::int16_t result = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), result);
    if (error == std::errc() && end == word.data() + word.size()) {
      codes.emplace_back();
      codes.back().result = result;
      codes.back().isDevices = isDevices;
    } else if (codes.size() == 1 && rest.empty()) {
      codes.front().name = word;
    } else {
      fail(passage.line, "codes or one code and its name are wanted: " + passage.title);
    }
  }
  return codes;
}

void requireAll(const std::vector<ResultCode>& codes) {
  std::set<std::pair<bool, std::int16_t>> wanted;
  for (const std::int16_t result : kOwnResults) wanted.emplace(false, result);
  for (std::int16_t result = 1; !deviceErrorText(result).empty(); ++result) wanted.emplace(true, result);
  std::set<std::string> names;
  for (const ResultCode& code : codes) {
    const std::string title = (code.isDevices ? "" : kComponents.data()) + std::to_string(code.result);
    if (wanted.erase({code.isDevices, code.result}) == 0) fail(0, title + " is explained twice, or is no result");
    const bool isNamed = code.name.empty() ? code.knowledge == Knowledge::kNothing : names.insert(code.name).second;
    if (!isNamed) fail(0, title + " has no name of its own");
    if (code.repeating == Repeating::kYes && code.knowledge != Knowledge::kMeaning) {
      fail(0, title + ": nobody knows that it may be repeated");
    }
    if (!agrees(code)) fail(0, title + ": the component holds it otherwise with repeating");
  }
  for (const auto& [isDevices, result] : wanted) {
    fail(0, (isDevices ? "" : kComponents.data()) + std::to_string(result) + " is not explained");
  }
}

}  // namespace

std::string_view wordFor(Repeating repeating) {
  constexpr std::string_view kWords[] = {"yes", "no", "ask first", "yes, later"};
  return kWords[static_cast<std::size_t>(repeating)];
}

std::vector<ResultCode> parseResultCodes(std::string_view text) {
  const std::vector<Passage> passages = readPassages(text);
  std::vector<ResultCode> codes;
  for (const Passage& passage : passages) {
    if (passage.title.starts_with('{')) continue;
    const Values values(passage, passages);
    for (ResultCode& code : readTitle(passage)) {
      code.text = textOf(code);
      if (values.has("known")) {
        code.knowledge = values.choice("known", {"text", "no"}) == 0 ? Knowledge::kTextAlone : Knowledge::kNothing;
      }
      code.meaning = {values.of("en"), values.of("el")};
      code.cashier = {values.of("cashier.en"), values.of("cashier.el")};
      code.programmer = values.of("program");
      code.repeating = static_cast<Repeating>(values.choice("repeat", {"yes", "no", "ask", "later"}));
      codes.push_back(std::move(code));
    }
  }
  requireAll(codes);
  std::stable_sort(codes.begin(), codes.end(), [](const ResultCode& a, const ResultCode& b) {
    return a.isDevices != b.isDevices ? b.isDevices : a.isDevices && a.result < b.result;
  });
  return codes;
}

const std::vector<ResultCode>& resultCodes() {
  static const std::vector<ResultCode> kCodes = parseResultCodes(kResultCodesText);
  return kCodes;
}

const ResultCode* findResultCode(std::int16_t result, std::string_view exresult) {
  const ResultCode* found = nullptr;
  for (const ResultCode& code : resultCodes()) {
    if (code.result == result && (!found || exresult == code.text)) found = &code;
  }
  return found;
}

}  // namespace mirvane
