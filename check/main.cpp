#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <fstream>

#include "check/device.h"
#include "check/doctor.h"
#include "check/machine.h"
#include "check/self_test.h"
#include "check/texts.h"
#include "version.h"

namespace mirvane::check {
namespace {

namespace fs = std::filesystem;

constexpr int kWarnings = 1, kFaults = 2, kUsage = 3;

struct Options {
  std::string port, emulator, report, who, day;
  bool find = false, slip = false, selfTest = false, tryComponent = false;
};

/// What is said goes to the console, and into the report when there is one.
class Speaker {
 public:
  void line(const std::string& text) { say(text + "\n"); }
  void section(const std::string& heading, const Findings& findings) {
    say("\n" + heading + "\n" + inWords(findings));
    all_.add(findings);
  }
  /// Tells the verdict; what the program ends with.
  int verdict() {
    const std::size_t faults = all_.count(Mark::kFault), warnings = all_.count(Mark::kWarning);
    if (faults + warnings == 0) {
      line("\n" + check::say(texts::kAllWell));
      return 0;
    }
    line("\n" + check::say(texts::kVerdict, {std::to_string(faults), std::to_string(warnings)}));
    return faults > 0 ? kFaults : kWarnings;
  }
  const std::string& said() const { return said_; }

 private:
  void say(const std::string& text) {
    print(text);
    said_ += text;
  }

  std::string said_;
  Findings all_;
};

// The newest records of each folder, the latest last, up to what one can send.
std::string newestRecords(const std::vector<fs::path>& folders) {
  constexpr std::size_t kMostFiles = 3;
  constexpr std::uintmax_t kMostBytes = 1 << 19;
  std::string text;
  for (const fs::path& folder : folders) {
    std::vector<std::pair<fs::file_time_type, fs::path>> files;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder / "records", error)) {
      if (entry.is_regular_file(error)) files.emplace_back(entry.last_write_time(error), entry.path());
    }
    std::sort(files.begin(), files.end());
    const std::size_t first = files.size() - std::min(kMostFiles, files.size());
    for (std::size_t i = first; i < files.size(); ++i) {
      const fs::path& file = files[i].second;
      std::ifstream stream(file, std::ios::binary);
      const std::uintmax_t size = fs::file_size(file, error);
      if (size > kMostBytes) stream.seekg(static_cast<std::streamoff>(size - kMostBytes));
      text += "\n" + say(texts::kNewestRecords, {nameOf(file)}) + "\n";
      text.append(std::istreambuf_iterator<char>(stream), {});
    }
  }
  return text;
}

// Editors of every Windows show it: with a mark of its coding and the system's line ends.
bool writeReport(const fs::path& path, const std::string& text) {
  std::ofstream file(path, std::ios::binary);
  file << "\xEF\xBB\xBF";
  for (const char c : text) {
    if (c == '\r') continue;
    if (c == '\n') file << '\r';
    file << c;
  }
  return (file << std::flush).good();
}

int check(const Options& options) {
  if (!options.who.empty()) return print(asLines(askWho(options.who))), 0;
  if (!options.day.empty()) return print(asLines(playDay(options.day))), 0;
  if (options.tryComponent) return print(asLines(tryComponent())), 0;

  Speaker speaker;
  speaker.line("mirvane-check " MIRVANE_VERSION ", " + describeSystem());
  std::vector<fs::path> folders;
  const bool asksMore = !options.port.empty() || options.find || options.selfTest;
  if (!asksMore || !options.report.empty()) speaker.section(say(texts::kDoctor), examineMachine(folders));
  if (!options.port.empty()) {
    speaker.section(say(texts::kRegister, {options.port}), askRegister(options.port, options.slip));
  }
  if (options.find) speaker.section(say(texts::kPorts), findRegister());
  if (options.selfTest) {
    for (const auto& [heading, findings] : testItself(options.emulator)) speaker.section(heading, findings);
  }
  const int verdict = speaker.verdict();
  if (options.report.empty()) return verdict;
  if (!writeReport(pathOf(options.report), now() + "\n" + speaker.said() + newestRecords(folders))) {
    print(say(texts::kReportFailed, {options.report}) + "\n");
    return kUsage;
  }
  print(say(texts::kReportWritten, {options.report}) + "\n");
  return verdict;
}

// The texts of the options are in the language that one of them names.
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
  Options options;
  std::string language;
  CLI::App app(say(texts::kAbout), "mirvane-check");
  app.set_help_flag("-h,--help", say(texts::kHelpOption));
  app.set_version_flag("--version", "mirvane-check " MIRVANE_VERSION, say(texts::kVersionOption));
  app.add_option("--port", options.port, say(texts::kPortOption));
  app.add_flag("--find", options.find, say(texts::kFindOption));
  app.add_flag("--slip", options.slip, say(texts::kSlipOption));
  app.add_flag("--self-test", options.selfTest, say(texts::kSelfTestOption));
  app.add_option("--emulator", options.emulator, say(texts::kEmulatorOption));
  app.add_option("--report", options.report, say(texts::kReportOption));
  app.add_option("--language", language, say(texts::kLanguageOption))->check(CLI::IsMember({"el", "en"}));
  // For the copies of this program that it starts itself; an empty group is not shown.
  app.add_option("--who", options.who)->group("");
  app.add_option("--day", options.day)->group("");
  app.add_flag("--try-component", options.tryComponent)->group("");
  std::reverse(arguments.begin(), arguments.end());
  try {
    app.parse(std::move(arguments));
    if (options.slip && options.port.empty()) throw CLI::ValidationError(say(texts::kSlipNeedsPort));
  } catch (const CLI::CallForHelp&) {
    return print(app.help()), 0;
  } catch (const CLI::CallForVersion&) {
    return print("mirvane-check " MIRVANE_VERSION "\n"), 0;
  } catch (const CLI::ParseError& error) {
    return print(say(texts::kUsage, {error.what()}) + "\n"), kUsage;
  }
  startCore();
  return check(options);
}

}  // namespace
}  // namespace mirvane::check

int main(int count, char** arguments) {
  try {
    const int outcome = mirvane::check::run(mirvane::check::commandLine(count, arguments));
    mirvane::check::keepConsole();
    return outcome;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return mirvane::check::kUsage;
  }
}
