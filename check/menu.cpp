#include "check/menu.h"

#include <algorithm>

#include "check/doctor.h"
#include "check/machine.h"
#include "check/texts.h"

namespace mirvane::check {
namespace {

std::string answerTo(const Phrase& question) {
  print(say(question));
  return readLine().value_or("");
}

// "MirvaneEFT 21-11-2026 20.33.37.txt" on the desktop.
std::string reportFile() {
  std::string time = now();
  std::replace(time.begin(), time.end(), ':', '.');
  return nameOf(desktop() / pathOf("MirvaneEFT " + time + ".txt"));
}

}  // namespace

Outcome followMenu() {
  const Outcome first = examine({});
  for (;;) {
    print("\n");
    const std::string choice = answerTo(texts::kMenu);
    Examination wanted;
    if (choice == "1") {
      wanted.port = answerTo(texts::kWhichPort);
    } else if (choice == "2") {
      wanted.find = true;
    } else if (choice == "3") {
      wanted.selfTest = true;
    } else if (choice == "4") {
      wanted.port = answerTo(texts::kReportPort);
      wanted.report = reportFile();
    } else if (choice.empty()) {
      return first;
    } else {
      continue;
    }
    print("\n");
    examine(wanted);
  }
}

}  // namespace mirvane::check
