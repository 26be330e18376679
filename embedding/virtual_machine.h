#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/ports.h"

// A simulated machine for programs that test the component: no wait takes real time, and everything the component did
// can be inspected. The program supplies the lines. Texts are kept in UTF-8.
namespace mirvane::embedding {

/// Thrown out of a wait that exceeds the clock's limit. The component does not know this exception, so it ends the call
/// whatever the component catches.
struct StillWaiting {};

/// A clock that advances only when something waits.
class VirtualClock : public platform::Clock {
 public:
  /// The clock shows 25 March 2024 and this many seconds since midnight.
  explicit VirtualClock(double start = 12 * 3600) : startOfDay(start) {}

  double secondsSinceMidnight() override;
  double elapsed() override;
  platform::LocalTime localTime() override;
  std::int64_t sinceEpoch() override;
  int zoneAt(std::int64_t /*sinceEpoch*/) override { return 0; }
  void sleep(std::uint32_t milliseconds) override;
  void advance(double seconds);

  double startOfDay;
  /// Seconds since the start of the machine.
  double now = 0;
  /// How far the clock advances with each look at it.
  double glance = 0;
  /// After this moment a wait throws StillWaiting.
  double limit = std::numeric_limits<double>::infinity();
  /// Called every 20 ms of simulated time, if set.
  std::function<void()> passes;
  /// How often something slept for each number of milliseconds.
  std::map<std::uint32_t, int> sleeps;
};

struct Box {
  std::string prompt;
  std::uint32_t style;
  std::string title;
  bool operator==(const Box&) const = default;
};

/// An operator who closes every message box and waits as long as asked.
class VirtualOperator : public platform::Screen {
 public:
  explicit VirtualOperator(VirtualClock& clock) : clock_(clock) {}

  void messageBox(TextView prompt, std::uint32_t style, TextView title) override;
  void waitWhile(const platform::WaitText& text, const std::function<bool(platform::WaitView&)>& tick) override;
  std::unique_ptr<platform::WaitView> showWait(const platform::WaitText& text) override;
  std::unique_ptr<platform::JournalView> showJournal() override;
  void serveWindows() override;
  void showTrace(bool /*shown*/) override {}
  void traceLine(TextView line) override;

  std::vector<Box> boxes;
  /// What journal windows did: "show", a file's name, "+" and a piece with the count, "close".
  std::vector<std::string> journal;
  /// What the operator read while waiting: "caption|state|message", and "close" for a window that was shown without
  /// blocking.
  std::vector<std::string> waits;
  std::vector<std::string> trace;
  int eventRounds = 0;
  /// How often the program's windows were served.
  int servings = 0;
  /// Program code to run wherever it can run within a call: in a message box, a wait, a journal, a window being served.
  std::function<void()> program;

 private:
  class WaitWindow;
  class JournalWindow;
  void letProgramRun() const;

  VirtualClock& clock_;
};

/// A disk without folders of its own: any path can be written.
class VirtualDisk : public platform::Files {
 public:
  Text componentFolder() override { return u"C:\\till"; }
  std::optional<std::string> read(TextView path) override;
  bool makeFolder(TextView folder) override;
  bool replace(TextView path, std::string_view bytes) override;
  bool isFolder(TextView folder) override { return folder == recordFolder; }
  std::vector<Text> fileNames(TextView folder) override;
  std::optional<std::uint64_t> fileSize(TextView path) override;
  std::unique_ptr<platform::GrowingFile> grow(TextView path) override;
  void remove(TextView path) override;

  /// The files below a folder, by the rest of their paths.
  std::map<std::string, std::string> below(const std::string& folder) const;

  std::map<Text, std::string> contents;
  /// The folders that were requested.
  std::vector<std::string> folders;
  /// Nothing can be written below this folder.
  Text unwritable = u"?";
  /// The one folder that exists.
  Text recordFolder;
  /// How many of the given number of bytes the disk accepts in an append.
  std::function<std::size_t(std::size_t)> onAppend = [](std::size_t count) { return count; };
  /// Files open for appending, in any program.
  std::set<Text> growing;

 private:
  class Growing;
};

}  // namespace mirvane::embedding
