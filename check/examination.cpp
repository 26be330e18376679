#include "check/examination.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "check/device.h"
#include "check/doctor.h"
#include "check/machine.h"
#include "check/self_test.h"
#include "check/texts.h"
#include "version.h"

namespace mirvane::check {
namespace {

namespace fs = std::filesystem;

using Json = nlohmann::ordered_json;

Outcome outcomeOf(const Findings& findings) {
  const Mark worst = worstOf(findings);
  if (worst == Mark::kFault) return kFaults;
  return worst == Mark::kWarning ? kWarnings : kNoProblems;
}

/// Writes each finding to the console at once, and collects all for the report, if there is one.
class Speaker {
 public:
  explicit Speaker(bool asJson) : asJson_(asJson) {}

  void line(const std::string& text) {
    if (!asJson_) print(text + "\n");
    said_ += text + "\n";
  }
  void section(const std::string& heading, const Findings& findings) {
    std::string words = inWords(findings);
    words.pop_back();
    line("\n" + heading + "\n" + words);
    for (const Finding& finding : findings.list()) {
      list_.push_back(
          {{"section", heading}, {"mark", wordFor(finding.mark)}, {"text", finding.what}, {"remedy", finding.remedy}});
    }
    all_.add(findings);
  }
  Outcome verdict(const std::string& unchecked) {
    const std::size_t faults = all_.count(Mark::kFault), warnings = all_.count(Mark::kWarning);
    const bool isWell = faults + warnings == 0;
    line("\n" +
         (isWell ? say(texts::kNoProblems) : say(texts::kVerdict, {std::to_string(faults), std::to_string(warnings)})));
    line(say(texts::kNotChecked, {unchecked}));
    if (asJson_) {
      const Json all = {{"version", MIRVANE_VERSION},  {"time", now()},    {"system", describeSystem()},
                        {"exitCode", outcomeOf(all_)}, {"faults", faults}, {"warnings", warnings},
                        {"notChecked", unchecked},     {"findings", list_}};
      print(all.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
    }
    return outcomeOf(all_);
  }
  const std::string& said() const { return said_; }

 private:
  bool asJson_;
  std::string said_;
  Json list_ = Json::array();
  Findings all_;
};

// Only a sale shows that the register sells: one whose closing got stuck answers every question but refuses sales.
std::string whatIsNotChecked(const Examination& wanted, bool looksAtMachine) {
  std::string list;
  const auto add = [&list](const Phrase& scope) { list += (list.empty() ? "" : ", ") + say(scope); };
  if (!looksAtMachine) add(texts::kMachineScope);
  if (wanted.port.empty()) add(texts::kRegisterScope);
  if (!wanted.port.empty() && !wanted.slip) add(texts::kPrintingScope);
  add(texts::kSaleScope);
  return list;
}

// The newest records of each folder, the latest last, up to a size that can be sent.
std::string newestRecords(const fs::path& folder) {
  constexpr std::size_t kMostFiles = 3;
  constexpr std::uintmax_t kMostBytes = 1 << 19;
  std::string text;
  std::vector<std::pair<fs::file_time_type, fs::path>> files;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
    if (entry.is_regular_file(error)) files.emplace_back(entry.last_write_time(error), entry.path());
  }
  std::sort(files.begin(), files.end());
  for (std::size_t i = files.size() - std::min(kMostFiles, files.size()); i < files.size(); ++i) {
    const fs::path& file = files[i].second;
    std::ifstream stream(file, std::ios::binary);
    const std::uintmax_t size = fs::file_size(file, error);
    if (size > kMostBytes) stream.seekg(static_cast<std::streamoff>(size - kMostBytes));
    text += "\n" + say(texts::kNewestRecords, {nameOf(file)}) + "\n";
    text.append(std::istreambuf_iterator<char>(stream), {});
  }
  return text;
}

// With a byte order mark and Windows line ends, so that every editor on Windows can show it.
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

}  // namespace

Outcome examine(const Examination& wanted) {
  Speaker speaker(wanted.asJson);
  speaker.line("mirvane-check " MIRVANE_VERSION ", " + describeSystem());
  std::vector<fs::path> folders;
  if (!wanted.folder.empty()) folders.push_back(fs::absolute(pathOf(wanted.folder)));
  const bool asksElse = !wanted.port.empty() || wanted.find || wanted.selfTest;
  const bool looksAtMachine = !asksElse || !wanted.report.empty() || !wanted.folder.empty();
  if (looksAtMachine) speaker.section(say(texts::kDoctor), examineMachine(folders));
  if (!wanted.port.empty()) {
    speaker.section(say(texts::kRegister, {wanted.port}), askRegister(wanted.port, wanted.slip));
  }
  if (wanted.find) speaker.section(say(texts::kPorts), findRegister());
  if (wanted.selfTest) {
    for (const auto& [heading, findings] : testItself(wanted.emulator)) speaker.section(heading, findings);
  }
  const Outcome verdict = speaker.verdict(whatIsNotChecked(wanted, looksAtMachine));
  if (wanted.report.empty()) return verdict;
  const fs::path file = fs::absolute(pathOf(wanted.report));
  std::string holds = say(texts::kReportHolds);
  if constexpr (sizeof MIRVANE_CONTACT > 1) holds += "\n" + say(texts::kSendTo, {MIRVANE_CONTACT});
  std::string report = now() + "\n" + holds + "\n\n" + speaker.said();
  for (const fs::path& folder : folders) {
    report += newestRecords(folder / "records");
    if (const fs::path shown = shownInPlaceOf(folder / "records"); !shown.empty()) report += newestRecords(shown);
  }
  const bool written = writeReport(file, report);
  speaker.line(say(written ? texts::kReportWritten : texts::kReportFailed, {nameOf(file)}));
  if (!written) return kFailed;
  speaker.line(holds);
  return verdict;
}

}  // namespace mirvane::check
