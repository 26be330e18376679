#include "embedding/virtual_machine.h"

#include <cmath>

#include "text/code_page.h"

namespace mirvane::embedding {

double VirtualClock::secondsSinceMidnight() { return std::fmod(startOfDay + elapsed(), 86400.0); }

double VirtualClock::elapsed() {
  if (glance > 0) advance(glance);
  return now;
}

platform::LocalTime VirtualClock::localTime() {
  const int seconds = static_cast<int>(secondsSinceMidnight());
  return {2024, 3, 25, seconds / 3600, seconds / 60 % 60, seconds % 60};
}

// From the day that localTime tells, at the same hour.
std::int64_t VirtualClock::sinceEpoch() { return 1711324800000 + static_cast<std::int64_t>((startOfDay + now) * 1000); }

void VirtualClock::sleep(std::uint32_t milliseconds) {
  ++sleeps[milliseconds];
  advance(milliseconds / 1000.0);
}

void VirtualClock::advance(double seconds) {
  constexpr double kStep = 0.02;
  for (; passes && seconds > kStep; seconds -= kStep) {
    now += kStep;
    passes();
  }
  now += seconds;
  if (now > limit) throw StillWaiting();
}

class VirtualOperator::WaitWindow : public platform::WaitView {
 public:
  WaitWindow(VirtualOperator& operatorThere, const platform::WaitText& text, bool isStanding)
      : operator_(operatorThere), isStanding_(isStanding) {
    WaitWindow::show(text);
  }
  WaitWindow(const WaitWindow&) = delete;
  WaitWindow& operator=(const WaitWindow&) = delete;
  ~WaitWindow() override {
    if (isStanding_) operator_.waits.emplace_back("close");
  }

  void show(const platform::WaitText& text) override {
    operator_.waits.push_back(toUtf8(text.caption + u"|" + text.state + u"|" + text.message));
    operator_.letProgramRun();
  }
  void repaint() override {
    ++operator_.eventRounds;
    operator_.letProgramRun();
  }

 private:
  VirtualOperator& operator_;
  const bool isStanding_;
};

class VirtualOperator::JournalWindow : public platform::JournalView {
 public:
  explicit JournalWindow(VirtualOperator& operatorThere) : operator_(operatorThere) { note("show"); }
  JournalWindow(const JournalWindow&) = delete;
  JournalWindow& operator=(const JournalWindow&) = delete;
  ~JournalWindow() override { operator_.journal.emplace_back("close"); }

  void beginFile(TextView name) override { note(toUtf8(name)); }
  void append(TextView piece, std::size_t count) override { note("+" + toUtf8(piece) + " " + std::to_string(count)); }
  void processEvents() override {
    ++operator_.eventRounds;
    operator_.letProgramRun();
  }

 private:
  void note(std::string what) {
    operator_.journal.push_back(std::move(what));
    operator_.letProgramRun();
  }

  VirtualOperator& operator_;
};

// A program may take itself back while it runs.
void VirtualOperator::letProgramRun() const {
  if (const auto itMay = program) itMay();
}

void VirtualOperator::messageBox(TextView prompt, std::uint32_t style, TextView title) {
  boxes.push_back({toUtf8(prompt), style, toUtf8(title)});
  letProgramRun();
}

void VirtualOperator::waitWhile(const platform::WaitText& text, const std::function<bool(platform::WaitView&)>& tick) {
  WaitWindow window(*this, text, false);
  do clock_.advance(1);
  while (tick(window));
}

std::unique_ptr<platform::WaitView> VirtualOperator::showWait(const platform::WaitText& text) {
  return std::make_unique<WaitWindow>(*this, text, true);
}

std::unique_ptr<platform::JournalView> VirtualOperator::showJournal() { return std::make_unique<JournalWindow>(*this); }

void VirtualOperator::serveWindows() {
  ++servings;
  letProgramRun();
}

void VirtualOperator::traceLine(TextView line) { trace.push_back(toUtf8(line)); }

// What is written to a file that was removed meanwhile is nowhere.
class VirtualDisk::Growing : public platform::GrowingFile {
 public:
  Growing(VirtualDisk& disk, Text path) : disk_(disk), path_(std::move(path)) {}
  Growing(const Growing&) = delete;
  Growing& operator=(const Growing&) = delete;
  ~Growing() override { disk_.growing.erase(path_); }

  std::uint64_t size() override { return disk_.fileSize(path_).value_or(0); }
  std::size_t append(std::string_view bytes) override {
    const std::size_t count = disk_.onAppend(bytes.size());
    if (const auto file = disk_.contents.find(path_); file != disk_.contents.end())
      file->second += bytes.substr(0, count);
    return count;
  }

 private:
  VirtualDisk& disk_;
  const Text path_;
};

std::optional<std::string> VirtualDisk::read(TextView path) {
  const auto file = contents.find(Text(path));
  return file == contents.end() ? std::nullopt : std::optional(file->second);
}

bool VirtualDisk::makeFolder(TextView folder) {
  folders.push_back(toUtf8(folder));
  return !folder.starts_with(unwritable);
}

bool VirtualDisk::replace(TextView path, std::string_view bytes) {
  if (path.starts_with(unwritable)) return false;
  contents[Text(path)] = bytes;
  return true;
}

std::vector<Text> VirtualDisk::fileNames(TextView folder) {
  std::vector<Text> names;
  for (const auto& file : below(toUtf8(folder) + "\\")) names.push_back(fromUtf8(file.first));
  return names;
}

std::optional<std::uint64_t> VirtualDisk::fileSize(TextView path) {
  const auto file = contents.find(Text(path));
  return file == contents.end() ? std::nullopt : std::optional<std::uint64_t>(file->second.size());
}

std::unique_ptr<platform::GrowingFile> VirtualDisk::grow(TextView path) {
  if (path.starts_with(unwritable) || !growing.insert(Text(path)).second) return nullptr;
  contents[Text(path)];
  return std::make_unique<Growing>(*this, Text(path));
}

void VirtualDisk::remove(TextView path) {
  if (!growing.contains(Text(path))) contents.erase(Text(path));
}

std::map<std::string, std::string> VirtualDisk::below(const std::string& folder) const {
  std::map<std::string, std::string> found;
  for (const auto& [path, bytes] : contents) {
    if (toUtf8(path).starts_with(folder)) found[toUtf8(path).substr(folder.size())] = bytes;
  }
  return found;
}

}  // namespace mirvane::embedding
