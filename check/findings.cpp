#include "check/findings.h"

#include <algorithm>
#include <array>
#include <sstream>

namespace mirvane::check {
namespace {

constexpr std::array<const char*, 4> kMarks = {"[x] ", "[!] ", "[-] ", "[ok]"};
constexpr char kLetters[] = "x!-o";
// Replaces a line end within a finding passed on by another copy of this program.
constexpr char kLineEnd = '\x1f';

std::string replaced(std::string text, char from, char to) {
  std::ranges::replace(text, from, to);
  return text;
}

// Indents each line below its finding.
std::string indented(const std::string& remedy) {
  std::string text = "     -> ";
  for (const char c : remedy) text += c == '\n' ? "\n        " : std::string(1, c);
  return text + "\n";
}

}  // namespace

std::size_t Findings::count(Mark mark) const {
  return static_cast<std::size_t>(
      std::count_if(list_.begin(), list_.end(), [mark](const Finding& finding) { return finding.mark == mark; }));
}

void Findings::sortWorstFirst() {
  std::stable_sort(list_.begin(), list_.end(), [](const Finding& a, const Finding& b) { return a.mark < b.mark; });
}

Mark worstOf(const Findings& findings) {
  Mark worst = Mark::kOk;
  for (const Finding& finding : findings.list()) worst = std::min(worst, finding.mark);
  return worst;
}

std::string_view wordFor(Mark mark) {
  constexpr std::array<std::string_view, 4> kWords = {"fault", "warning", "note", "ok"};
  return kWords[static_cast<std::size_t>(mark)];
}

std::string inWords(const Findings& findings) {
  std::string text;
  for (const Finding& finding : findings.list()) {
    text += std::string(kMarks[static_cast<std::size_t>(finding.mark)]) + " " + finding.what + "\n";
    if (!finding.remedy.empty()) text += indented(finding.remedy);
  }
  return text;
}

std::string asLines(const Findings& findings) {
  std::string text;
  for (const Finding& finding : findings.list()) {
    text += kLetters[static_cast<std::size_t>(finding.mark)] + ("\t" + finding.what) + "\t" +
            replaced(finding.remedy, '\n', kLineEnd) + "\n";
  }
  return text;
}

Findings fromLines(const std::string& lines) {
  Findings findings;
  std::istringstream stream(lines);
  for (std::string line; std::getline(stream, line);) {
    if (line.ends_with('\r')) line.pop_back();
    const std::size_t mark = line.empty() ? std::string::npos : std::string(kLetters).find(line.front());
    const std::size_t remedy = line.find('\t', 2);
    if (mark == std::string::npos || remedy == std::string::npos) continue;
    findings.add(
        {static_cast<Mark>(mark), line.substr(2, remedy - 2), replaced(line.substr(remedy + 1), kLineEnd, '\n')});
  }
  return findings;
}

}  // namespace mirvane::check
