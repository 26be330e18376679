#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// What each result means, for people: read from docs/result_codes.txt, which is built in. Texts are UTF-8.
namespace mirvane {

/// Whether the same call may be made again after a result.
enum class Repeating { kYes, kNo, kAskFirst, kLater };

/// What is known of a code.
enum class Knowledge { kMeaning, kTextAlone, kNothing };

struct Bilingual {
  std::string en;
  std::string el;
};

/// A result and what to do about it. Meaning and remedies are plain text but for `programmer`, which is Markdown.
struct ResultCode {
  std::int16_t result = 0;
  /// A code of the register's; otherwise one that the component itself gives. 1 and 100 are both.
  bool isDevices = false;
  /// A name for programs, such as "paper-end"; empty where nothing is known of the code.
  std::string name;
  /// As `Exresult` and the boxes show it; empty where it varies. Of -1 and -2 the port's name follows.
  std::string text;
  Knowledge knowledge = Knowledge::kMeaning;
  Bilingual meaning;
  Bilingual cashier;
  std::string programmer;
  Repeating repeating = Repeating::kAskFirst;
};

/// The words for it: "yes", "no", "ask first", "yes, later".
std::string_view wordFor(Repeating repeating);

/// docs/result_codes.txt as it is built in.
extern const std::string_view kResultCodesText;

/// Reads a text of the form that docs/result_codes.txt describes: the component's own results first, then the
/// register's by number. Throws std::runtime_error, with the line, for one that is not so, for a result without an
/// explanation, and for one that says of repeating what the component does not hold to.
std::vector<ResultCode> parseResultCodes(std::string_view text);

/// All results, from that text.
const std::vector<ResultCode>& resultCodes();

/// What a call's `Result` means; null for a code that nobody knows. `exresult` tells where the component and the
/// register give the same number.
const ResultCode* findResultCode(std::int16_t result, std::string_view exresult);

}  // namespace mirvane
