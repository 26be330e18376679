#include "driver/words.h"

#include <algorithm>
#include <array>

#include "text/text.h"

namespace mirvane {
namespace {

constexpr TextView kAskState = u"?/";
constexpr TextView kAskSerialNumber = u"a/";

// Questions by their whole text, and others by how they begin.
constexpr std::array<TextView, 11> kQuestions = {
    kAskState, kAskSerialNumber, u"v/", u"9/", u"0/", u"t/", u"h/", u"{/", u"e/", u"s/", u",/0/"};
constexpr std::array<TextView, 3> kQuestionBegins = {u"D/", u"k/", u"E/0/"};
constexpr std::array<TextView, 4> kJournal = {u"Q/", u"A/", u"#/", u")/"};

bool isTerminalGiven(TextView payment) {
  constexpr std::size_t kTerminal = 5;  // behind the code, number, two texts and the amount
  const std::vector<Text> fields = split(payment, u'/');
  return fields.size() > kTerminal && toInt(fields[kTerminal]) > 0;
}

Word wordOf(TextView command) {
  const auto begins = [command](TextView begin) { return command.starts_with(begin); };
  Word word;
  word.asksRemaining = begins(u"5/99/");
  word.asks = word.asksRemaining || std::find(kQuestions.begin(), kQuestions.end(), command) != kQuestions.end() ||
              std::any_of(kQuestionBegins.begin(), kQuestionBegins.end(), begins);
  word.movesJournal = std::find(kJournal.begin(), kJournal.end(), command) != kJournal.end();
  const bool isPayment = begins(u"5/") && !word.asks;
  // A terminal that is tested is started.
  word.pays = isPayment || begins(u"E/2/");
  word.paysByCard = isPayment && isTerminalGiven(command);
  return word;
}

}  // namespace

const Words kSecondGenerationWords{&wordOf, kAskState, kAskSerialNumber};

}  // namespace mirvane
