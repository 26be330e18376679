#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <deque>
#include <functional>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/ports.h"

namespace mirvane::test {

/// Time that passes only when somebody waits.
class FakeClock : public platform::Clock {
 public:
  double secondsSinceMidnight() override { return std::fmod(startOfDay + now, 86400.0); }
  double elapsed() override { return now; }
  platform::LocalTime localTime() override {
    const int seconds = static_cast<int>(secondsSinceMidnight());
    return {2024, 3, 25, seconds / 3600, seconds / 60 % 60, seconds % 60};
  }
  // From the day that localTime tells, at the same hour.
  std::int64_t sinceEpoch() override { return 1711324800000 + static_cast<std::int64_t>((startOfDay + now) * 1000); }
  int zoneAt(std::int64_t /*sinceEpoch*/) override { return 0; }
  void sleep(std::uint32_t milliseconds) override {
    ++sleeps[milliseconds];
    advance(milliseconds / 1000.0);
  }
  void advance(double seconds) {
    now += seconds;
    if (now > 7200) throw std::logic_error("still waiting after two hours");
  }

  double startOfDay = 12 * 3600 + 34 * 60 + 56;
  double now = 0;
  std::map<std::uint32_t, int> sleeps;
};

struct Box {
  std::string prompt;
  std::uint32_t style;
  std::string title;
  bool operator==(const Box&) const = default;
};
inline void PrintTo(const Box& box, std::ostream* out) { *out << box.style << " " << box.title << ": " << box.prompt; }

/// An operator who closes every box and waits as the test says.
class FakeScreen : public platform::Screen {
 public:
  void messageBox(TextView prompt, std::uint32_t style, TextView title) override {
    boxes.push_back({toUtf8(prompt), style, toUtf8(title)});
    letProgramRun();
  }
  struct View : platform::WaitView {
    View(FakeScreen& itsScreen, const platform::WaitText& text) : screen(itsScreen) {
      show(text);
      screen.letProgramRun();
    }
    void show(const platform::WaitText& text) override {
      screen.waits.push_back(toUtf8(text.caption + u"|" + text.state + u"|" + text.message));
    }
    void repaint() override {
      ++screen.eventRounds;
      screen.letProgramRun();
    }
    FakeScreen& screen;
  };
  void waitWhile(const platform::WaitText& text, const std::function<bool(platform::WaitView&)>& tick) override {
    if (!expectsWaits) throw std::logic_error("an unexpected wait");
    View view(*this, text);
    while (tick(view)) letProgramRun();
  }
  std::unique_ptr<platform::WaitView> showWait(const platform::WaitText& text) override {
    struct Standing : View {
      using View::View;
      ~Standing() override { screen.waits.emplace_back("close"); }
    };
    return std::make_unique<Standing>(*this, text);
  }
  std::unique_ptr<platform::JournalView> showJournal() override {
    struct Window : platform::JournalView {
      explicit Window(FakeScreen& itsScreen) : screen(itsScreen) { screen.journal.emplace_back("show"); }
      ~Window() override { screen.journal.emplace_back("close"); }
      void beginFile(TextView name) override { screen.journal.push_back(toUtf8(name)); }
      void append(TextView piece, std::size_t count) override {
        screen.journal.push_back("+" + toUtf8(piece) + " " + std::to_string(count));
      }
      void processEvents() override {
        ++screen.eventRounds;
        screen.letProgramRun();
      }
      FakeScreen& screen;
    };
    return std::make_unique<Window>(*this);
  }
  void serveWindows() override {
    ++servings;
    letProgramRun();
  }
  void showTrace(bool /*shown*/) override {}
  void traceLine(TextView line) override { trace.push_back(toUtf8(line)); }

  std::vector<Box> boxes;
  /// What journal windows did: "show", a file's name, "+" and a piece with the count, "close".
  std::vector<std::string> journal;
  /// What the operator read while waiting, second by second.
  std::vector<std::string> waits;
  bool expectsWaits = false;
  std::vector<std::string> trace;
  int eventRounds = 0;
  /// How often the program's windows were served.
  int servings = 0;
  /// What the program does whenever it runs within a call of its own: in a box, a wait, a journal, a window served.
  std::function<void()> program;

 private:
  void letProgramRun() const {
    if (const auto itMay = program) itMay();
  }
};

class FakeFiles : public platform::Files {
 public:
  Text componentFolder() override { return u"C:\\till"; }
  std::optional<std::string> read(TextView path) override {
    const auto file = contents.find(Text(path));
    return file == contents.end() ? std::nullopt : std::optional(file->second);
  }
  bool makeFolder(TextView folder) override {
    folders.push_back(toUtf8(folder));
    return !folder.starts_with(unwritable);
  }
  bool replace(TextView path, std::string_view bytes) override {
    if (path.starts_with(unwritable)) return false;
    contents[Text(path)] = bytes;
    return true;
  }
  bool isFolder(TextView folder) override { return folder == recordFolder; }
  std::vector<Text> fileNames(TextView folder) override {
    std::vector<Text> names;
    for (const auto& file : below(toUtf8(folder) + "\\")) names.push_back(fromUtf8(file.first));
    return names;
  }
  std::optional<std::uint64_t> fileSize(TextView path) override {
    const auto file = contents.find(Text(path));
    return file == contents.end() ? std::nullopt : std::optional<std::uint64_t>(file->second.size());
  }
  std::unique_ptr<platform::GrowingFile> grow(TextView path) override {
    if (path.starts_with(unwritable) || !growing.insert(Text(path)).second) return nullptr;
    contents[Text(path)];
    return std::make_unique<Growing>(*this, Text(path));
  }
  void remove(TextView path) override {
    if (!growing.contains(Text(path))) contents.erase(Text(path));
  }
  /// A catalogue of so many languages; `fields` (UTF-8) stand one after the other, message by message.
  void setCatalogue(std::uint8_t languages, const std::map<std::size_t, std::string>& fields, std::size_t messages) {
    std::string file(1, static_cast<char>(languages));
    for (std::size_t i = 0; i < messages * languages; ++i) {
      const auto field = fields.find(i);
      std::string bytes = field == fields.end() ? "" : toCodePage(fromUtf8(field->second));
      bytes.resize(100, ' ');
      file += bytes;
      if ((i + 1) % languages == 0) file += "\r\n";
    }
    contents[kCatalogue] = file;
  }

  /// The files below a folder, by the rest of their paths.
  std::map<std::string, std::string> below(const std::string& folder) const {
    std::map<std::string, std::string> files;
    for (const auto& [path, bytes] : contents) {
      if (toUtf8(path).starts_with(folder)) files[toUtf8(path).substr(folder.size())] = bytes;
    }
    return files;
  }

  static constexpr const char16_t* kCatalogue = u"C:\\till\\Lang.dat";
  std::map<Text, std::string> contents;
  std::vector<std::string> folders;
  /// Below this folder nothing can be written.
  Text unwritable = u"?";
  /// The one folder that is there.
  Text recordFolder;
  /// How many of so many bytes more the disk takes at a file's end.
  std::function<std::size_t(std::size_t)> onAppend = [](std::size_t count) { return count; };
  /// The files that grow, of whatever program.
  std::set<Text> growing;

 private:
  // What is written to a file that was removed meanwhile is nowhere.
  class Growing : public platform::GrowingFile {
   public:
    Growing(FakeFiles& files, Text path) : files_(files), path_(std::move(path)) {}
    Growing(const Growing&) = delete;
    Growing& operator=(const Growing&) = delete;
    ~Growing() override { files_.growing.erase(path_); }
    std::uint64_t size() override { return files_.fileSize(path_).value_or(0); }
    std::size_t append(std::string_view bytes) override {
      const std::size_t count = files_.onAppend(bytes.size());
      if (const auto file = files_.contents.find(path_); file != files_.contents.end()) {
        file->second += bytes.substr(0, count);
      }
      return count;
    }

   private:
    FakeFiles& files_;
    const Text path_;
  };
};

}  // namespace mirvane::test
