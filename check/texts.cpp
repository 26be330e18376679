#include "check/texts.h"

#include <vector>

namespace mirvane::check {
namespace {

Language spoken = Language::kEnglish;

}  // namespace

void speak(Language language) { spoken = language; }

bool speaksGreek() { return spoken == Language::kGreek; }

std::string say(const Phrase& phrase, std::initializer_list<std::string> values) {
  const std::vector<std::string> list(values);
  std::string text;
  for (const char* c = speaksGreek() ? phrase.greek : phrase.english; *c != '\0'; ++c) {
    const auto number = static_cast<std::size_t>(c[0] == '%' && c[1] > '0' && c[1] <= '9' ? c[1] - '0' : 0);
    if (number == 0 || number > list.size()) {
      text += *c;
    } else {
      text += list[number - 1];
      ++c;
    }
  }
  return text;
}

}  // namespace mirvane::check
