#include "text/text.h"

#include <algorithm>
#include <array>

namespace mirvane {

Text stripAccents(Text& text) {
  struct Pair {
    char16_t from, to;
  };
  // "ύ" maps to itself: it keeps its accent.
  static constexpr std::array<Pair, 14> kPairs = {{{u'ά', u'α'},
                                                   {u'Ά', u'Α'},
                                                   {u'έ', u'ε'},
                                                   {u'Έ', u'Ε'},
                                                   {u'ή', u'η'},
                                                   {u'Ή', u'Η'},
                                                   {u'ί', u'ι'},
                                                   {u'Ί', u'Ι'},
                                                   {u'ό', u'ο'},
                                                   {u'Ό', u'Ο'},
                                                   {u'ύ', u'ύ'},
                                                   {u'Ύ', u'Υ'},
                                                   {u'ώ', u'ω'},
                                                   {u'Ώ', u'Ω'}}};
  for (const Pair& pair : kPairs) std::replace(text.begin(), text.end(), pair.from, pair.to);
  return text;
}

Text cleanText(TextView text) {
  Text clean(text);
  stripAccents(clean);
  std::replace(clean.begin(), clean.end(), u'/', u'-');
  return clean;
}

Text left(TextView text, std::size_t count) { return Text(text.substr(0, count)); }

TextView trim(TextView text) {
  const auto first = text.find_first_not_of(u' ');
  if (first == TextView::npos) return {};
  return text.substr(first, text.find_last_not_of(u' ') - first + 1);
}

std::vector<Text> split(TextView text, char16_t separator) {
  std::vector<Text> pieces;
  for (;;) {
    const auto end = text.find(separator);
    pieces.emplace_back(text.substr(0, end));
    if (end == TextView::npos) return pieces;
    text.remove_prefix(end + 1);
  }
}

}  // namespace mirvane
