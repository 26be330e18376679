#include "emulator/paper.h"

namespace mirvane::emulator {

void Paper::line(TextView text, int size) {
  do {
    const TextView row = text.substr(0, kColumns);
    sink_({Text(row.substr(0, row.find_last_not_of(u' ') + 1)), size});
    text.remove_prefix(row.size());
  } while (!text.empty());
}

void Paper::sized(TextView text, int size, bool centred) {
  Text spread;
  if (size >= 3) {
    for (const char16_t c : text) spread.append({c, u' '});
    text = spread;
  }
  const std::size_t margin = centred && text.size() < kColumns ? (kColumns - text.size()) / 2 : 0;
  line(Text(margin, u' ').append(text), std::max(size, 1));
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
  sink_({text, 1, true});
}

}  // namespace mirvane::emulator
