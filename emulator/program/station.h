#pragma once

#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "emulator/device.h"
#include "emulator/line.h"
#include "emulator/program/clock.h"
#include "emulator/program/memory.h"

namespace mirvane::emulator {

/// Milliseconds since 1970.
std::int64_t millisecondsNow();

/// One register as the program runs it: with its faults, its lines, their communication, and its state on disk.
class Station {
 public:
  explicit Station(Paper::Sink paper);
  Station(const Station&) = delete;
  Station& operator=(const Station&) = delete;
  ~Station();

  Device device;
  Faults faults;
  StationClock clock;
  /// Milliseconds of this machine's clock at the start: distinguishes runs.
  const std::int64_t started = millisecondsNow();

  /// One exchange.
  struct Entry {
    /// Counts from 1.
    int id;
    /// This machine's time.
    platform::LocalTime time;
    int milliseconds;
    std::string line;
    Exchange exchange;
  };
  /// The latest thousand, oldest first, with consecutive ids.
  const std::deque<Entry>& conversation() const { return conversation_; }
  /// Id of the oldest one, or of the next if there is none.
  int firstEntry() const { return conversation_.empty() ? lastEntry_ + 1 : conversation_.front().id; }
  void clearConversation() { conversation_.clear(); }

  /// An event that a test may wait for.
  struct Happening {
    enum class Kind { kExchange, kStruck, kReceipt, kReport, kCash, kDrawer, kDisplay };
    /// Counts from 1.
    int id;
    Kind kind;
    /// The register's time.
    platform::LocalTime time;
    /// The id of the entry or document, or how often the drawer was opened.
    int subject;
    Display display = {};
  };
  /// The latest thousands, oldest first, with consecutive ids.
  const std::deque<Happening>& happenings() const { return happenings_; }
  int lastHappening() const { return lastHappening_; }

  /// Records the communication on `line`, under `name`. The line must outlive the station.
  void attach(Line& line, const std::string& name);

  /// Called after changes of the register, the faults or the communication.
  std::function<void()> onChange;
  /// Called for each event.
  std::function<void(const Happening&)> onHappening;
  /// Call this after a change that was not made over a line. Throws StateError.
  void changed();
  /// Call this several times a second: it books card payments that their terminals have decided, and removes rules
  /// whose time is over.
  void tick();

  /// Keeps the register's state in `path`, and restores it from there unless `isAnew`. Call it once, at the start.
  /// Throws StateError.
  void keepStateIn(const std::string& path, bool isAnew);
  /// How card terminals decide by default.
  CardPayments::Options cardDefaults;
  /// Clears all faults: rules, switches and card terminal settings.
  void calm();
  /// Resets to the factory state for a certain trade ("fresh", "kiosk", "restaurant"), without faults. The serial
  /// number stays. Returns false and does nothing if there is no such preset.
  bool reset(const std::string& preset);
  /// Executes a command that came over no line, and returns the reply, both without frame and checksum.
  std::string execute(const std::string& command);

  const std::vector<NamedLine>& lines() const { return lines_; }

 private:
  class Watcher;

  void record(const std::string& line, const Exchange& exchange);
  /// Looks for events since the last call.
  void notice();
  void happened(Happening::Kind kind, int subject);
  void save();
  Remembered remembered() { return {device, clock, lines_}; }

  std::deque<Entry> conversation_;
  int lastEntry_ = 0;
  std::deque<Happening> happenings_;
  int lastHappening_ = 0;
  /// The state at the last look.
  int lastEnded_ = 0, drawerOpenings_ = 0;
  Display display_{};
  std::vector<NamedLine> lines_;
  std::list<Watcher> watchers_;
  std::unique_ptr<Store> store_;
  std::unique_ptr<Keeper> keeper_;
};

}  // namespace mirvane::emulator
