#include "driver/words.h"

#include <algorithm>

#include "text/numbers.h"
#include "text/text.h"

namespace mirvane {
namespace {

constexpr TextView kAskState = u"?/";
constexpr TextView kAskSerialNumber = u"a/";

constexpr Word kAsks{.asks = true};
constexpr Word kDoes{};

struct Row {
  TextView text;
  Word word;
  /// Matches the whole command, not its beginning.
  bool isWhole = false;
};

// All commands. The first match counts.
constexpr Row kRows[] = {
    // connection
    {kAskState, kAsks, true},
    {u"v/", kAsks, true},
    {kAskSerialNumber, kAsks, true},
    // receipt
    {u"3/", kDoes},
    {u"4/", kDoes},
    {u"5/99/", {.asks = true, .asksRemaining = true}},
    {u"5/", {.pays = true}},
    {u"6/", kDoes},
    {u"O/", kDoes},
    {u"P/", kDoes},
    {u"m/", kDoes},
    // paper, drawer, display
    {u"F/", kDoes},
    {u"p/", kDoes},
    {u"2/", kDoes},
    {u"7/", kDoes},
    // reports and the journal
    {u"x/", kDoes},
    {u"A/", {.movesJournal = true}, true},
    {u"#/", {.movesJournal = true}, true},
    {u")/", {.movesJournal = true}, true},
    {u"Q/", {.movesJournal = true}, true},
    // reads
    {u"t/", kAsks, true},
    {u"h/", kAsks, true},
    {u"{/", kAsks, true},
    {u"e/", kAsks, true},
    {u"s/", kAsks, true},
    {u"9/", kAsks, true},
    {u"0/", kAsks, true},
    {u"D/", kAsks},
    {u"k/", kAsks},
    // settings
    {u"H/", kDoes},
    {u"Y/", kDoes},
    {u"b/", kDoes},
    {u"d/", kDoes},
    {u"K/", kDoes},
    {u"S/", kDoes},
    {u"B/", kDoes},
    {u"]/", {.holdsKey = true}},
    {u",/0/", {.asks = true, .holdsKey = true}, true},
    {u",/", {.holdsKey = true}},
    // card terminals
    {u"E/0/", kAsks},
    {u"E/1/", kDoes},
    {u"E/2/", {.pays = true}},  // testing a terminal starts it
    {u"E/4/", kDoes},
};

bool namesTerminal(TextView payment) {
  constexpr std::size_t kTerminal = 5;  // after the code: number, two texts and the amount
  const std::vector<Text> fields = split(payment, u'/');
  return fields.size() > kTerminal && toInt(fields[kTerminal]) > 0;
}

std::optional<Word> wordOf(TextView command) {
  const auto row = std::ranges::find_if(
      kRows, [command](const Row& r) { return r.isWhole ? command == r.text : command.starts_with(r.text); });
  if (row == std::end(kRows)) return std::nullopt;
  Word word = row->word;
  word.paysByCard = word.pays && command.starts_with(u"5/") && namesTerminal(command);
  return word;
}

}  // namespace

const Words kSecondGenerationWords{&wordOf, kAskState, kAskSerialNumber};

}  // namespace mirvane
