#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>

#include "check/device.h"
#include "check/examination.h"
#include "check/machine.h"
#include "check/menu.h"
#include "check/self_test.h"
#include "check/texts.h"
#include "version.h"

namespace mirvane::check {
namespace {

/// What this copy of the program was started for, by another copy.
struct Errand {
  std::string who, day;
  bool tryComponent = false;

  /// The findings; nothing if there is no errand.
  std::optional<Findings> run(const std::string& folder) const {
    if (!who.empty()) return askWho(who);
    if (!day.empty()) return playDay(day);
    if (tryComponent) return check::tryComponent(pathOf(folder));
    return std::nullopt;
  }
};

// The texts of the options are in the language that an option selects.
void chooseLanguage(const std::vector<std::string>& arguments) {
  bool greek = systemSpeaksGreek();
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i] == "--language" && i + 1 < arguments.size()) greek = arguments[i + 1] == "el";
    if (arguments[i].starts_with("--language=")) greek = arguments[i].ends_with("el");
  }
  speak(greek ? Language::kGreek : Language::kEnglish);
}

int run(std::vector<std::string> arguments) {
  chooseLanguage(arguments);
  Examination wanted;
  Errand errand;
  std::string language;
  bool isForMenu = arguments.empty() && hasOwnConsole();
  CLI::App app(say(texts::kAbout), "mirvane-check");
  app.set_help_flag("-h,--help", say(texts::kHelpOption));
  app.set_version_flag("--version", "mirvane-check " MIRVANE_VERSION, say(texts::kVersionOption));
  app.add_option("--port", wanted.port, say(texts::kPortOption));
  app.add_flag("--find", wanted.find, say(texts::kFindOption));
  app.add_flag("--slip", wanted.slip, say(texts::kSlipOption));
  app.add_option("--folder", wanted.folder, say(texts::kFolderOption));
  app.add_flag("--self-test", wanted.selfTest, say(texts::kSelfTestOption));
  app.add_option("--emulator", wanted.emulator, say(texts::kEmulatorOption));
  app.add_option("--report", wanted.report, say(texts::kReportOption));
  app.add_flag("--json", wanted.asJson, say(texts::kJsonOption));
  app.add_option("--language", language, say(texts::kLanguageOption))->check(CLI::IsMember({"el", "en"}));
  // For the double click, and for the copies that this program starts. An empty group is hidden.
  app.add_flag("--menu", isForMenu)->group("");
  app.add_option("--who", errand.who)->group("");
  app.add_option("--day", errand.day)->group("");
  app.add_flag("--try-component", errand.tryComponent)->group("");
  std::reverse(arguments.begin(), arguments.end());
  try {
    app.parse(std::move(arguments));
    if (wanted.slip && wanted.port.empty()) throw CLI::ValidationError(say(texts::kSlipNeedsPort));
  } catch (const CLI::CallForHelp&) {
    return print(app.help()), kNoProblems;
  } catch (const CLI::CallForVersion&) {
    return print("mirvane-check " MIRVANE_VERSION "\n"), kNoProblems;
  } catch (const CLI::ParseError& error) {
    return print(say(texts::kUsage, {error.what()}) + "\n"), kFailed;
  }
  startCore();
  if (const auto findings = errand.run(wanted.folder)) return print(asLines(*findings)), kNoProblems;
  return isForMenu ? followMenu() : examine(wanted);
}

// The menu has already waited for the user.
void letRead() {
  if (!hasOwnConsole()) return;
  print("\n" + say(texts::kPressKey) + "\n");
  readLine();
}

}  // namespace
}  // namespace mirvane::check

int main(int count, char** arguments) {
  using namespace mirvane::check;
  const std::vector<std::string> words = commandLine(count, arguments);
  try {
    const int outcome = run(words);
    if (!words.empty()) letRead();
    return outcome;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    letRead();
    return kFailed;
  }
}
