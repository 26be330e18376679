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

// A machine that is not there, for programs that try the component out: nothing in it waits, and everything that the
// component did to it can be looked at. Its lines are whatever the program gives it. Texts are kept in UTF-8.
namespace mirvane::embedding {

/// Thrown out of a wait that has gone past the clock's limit. No exception that the component knows, so that it ends
/// the call whatever that would catch.
struct StillWaiting {};

/// Time that passes when somebody waits.
class VirtualClock : public platform::Clock {
 public:
  /// The clock shows 25 March 2024, and so many seconds since midnight.
  explicit VirtualClock(double start = 12 * 3600) : startOfDay(start) {}

  double secondsSinceMidnight() override;
  double elapsed() override;
  platform::LocalTime localTime() override;
  std::int64_t sinceEpoch() override;
  int zoneAt(std::int64_t /*sinceEpoch*/) override { return 0; }
  void sleep(std::uint32_t milliseconds) override;
  void advance(double seconds);

  double startOfDay;
  /// Seconds since the machine was started.
  double now = 0;
  /// What passes whenever somebody looks.
  double glance = 0;
  /// Past this moment a wait throws StillWaiting.
  double limit = std::numeric_limits<double>::infinity();
  /// Called every 20 ms while time passes, when it is set.
  std::function<void()> passes;
  /// How often somebody slept for so many milliseconds.
  std::map<std::uint32_t, int> sleeps;
};

struct Box {
  std::string prompt;
  std::uint32_t style;
  std::string title;
  bool operator==(const Box&) const = default;
};

/// An operator who closes every box and waits as long as asked.
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
  /// What the operator read while waiting: "caption|state|message", and "close" for a window that stood by itself.
  std::vector<std::string> waits;
  std::vector<std::string> trace;
  int eventRounds = 0;
  /// How often the program's windows were served.
  int servings = 0;
  /// What the program does wherever its own code can run within a call: in a box, a wait, a journal, a window that is
  /// served.
  std::function<void()> program;

 private:
  class WaitWindow;
  class JournalWindow;
  void letProgramRun() const;

  VirtualClock& clock_;
};

/// A disk of files without folders of its own: whatever path is written is there.
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
  /// The folders that were asked for.
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
  class Growing;
};

}  // namespace mirvane::embedding
