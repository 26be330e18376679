#include "emulator/paper.h"

namespace mirvane::emulator {

void Paper::line(TextView text) {
  do {
    const TextView row = text.substr(0, kColumns);
    if (sink_) sink_(row.substr(0, row.find_last_not_of(u' ') + 1));
    text.remove_prefix(row.size());
  } while (!text.empty());
}

void Paper::sized(TextView text, int size, bool centred) {
  Text spread;
  if (size >= 3) {
    for (const char16_t c : text) spread.append({c, u' '});
    text = spread;
  }
  if (centred && text.size() < kColumns) {
    line(Text((kColumns - text.size()) / 2, u' ').append(text));
  } else {
    line(text);
  }
}

void Paper::pair(TextView left, TextView right) {
  Text text(left.substr(0, kColumns - 1 - std::min(right.size(), kColumns - 1)));
  text.append(kColumns - std::min(kColumns, text.size() + right.size()), u' ').append(right);
  line(text);
}

void Paper::rule() { line(Text(kColumns, u'-')); }

void Paper::feed(int lines) {
  for (int i = 0; i < lines; ++i) line(u"");
}

void Paper::cut(bool full) {
  Text text = u"8<";
  while (text.size() + 2 <= kColumns) text += full ? u"--" : u"- ";
  line(text);
}

}  // namespace mirvane::emulator
