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

/// Since 1970.
std::int64_t millisecondsNow();

/// One register as the program runs it: with its faults, its lines, what was said on them, and its memory on the disk.
class Station {
 public:
  explicit Station(Paper::Sink paper);
  Station(const Station&) = delete;
  Station& operator=(const Station&) = delete;
  ~Station();

  Device device;
  Faults faults;
  StationClock clock;
  /// Milliseconds of this machine's clock at the start: tells one run from another.
  const std::int64_t started = millisecondsNow();

  /// An exchange that took place.
  struct Entry {
    /// Counts from 1.
    int id;
    /// Of this machine.
    platform::LocalTime time;
    int milliseconds;
    std::string line;
    Exchange exchange;
  };
  /// The latest thousand, oldest first; their ids follow one another.
  const std::deque<Entry>& conversation() const { return conversation_; }
  /// Of the oldest one, or of the first one to come.
  int firstEntry() const { return conversation_.empty() ? lastEntry_ + 1 : conversation_.front().id; }
  void clearConversation() { conversation_.clear(); }

  /// Something that a test may wait for.
  struct Happening {
    enum class Kind { kExchange, kStruck, kReceipt, kReport, kCash, kDrawer, kDisplay };
    /// Counts from 1.
    int id;
    Kind kind;
    /// Of the register.
    platform::LocalTime time;
    /// The id of the entry or of the document, or how often the drawer was opened.
    int subject;
    Display display = {};
  };
  /// The latest thousands, oldest first; their ids follow one another.
  const std::deque<Happening>& happenings() const { return happenings_; }
  int lastHappening() const { return lastHappening_; }

  /// Has the register remember what is said on `line`, under `name`. The line outlives the station's use.
  void attach(Line& line, const std::string& name);

  /// Whoever is told of changes: of the register, of the faults, of the conversation.
  std::function<void()> onChange;
  /// Whoever is told of each thing that happens.
  std::function<void(const Happening&)> onHappening;
  /// To be called after a change that was not made over a line. Throws StateError.
  void changed();
  /// To be called several times a second: card payments that their terminal has decided are booked, and rules whose
  /// time is over leave.
  void tick();

  /// Keeps the register's memory in `path`, and takes over what is there unless `isAnew`. Once, at the beginning.
  /// Throws StateError.
  void keepStateIn(const std::string& path, bool isAnew);
  /// How card terminals decide when nothing else is wished.
  CardPayments::Options cardDefaults;
  /// Takes back all misbehaviour: rules, switches, and what was wished of card terminals.
  void calm();
  /// As it came from the factory, for a certain trade ("fresh", "kiosk", "restaurant"), calm. The serial number
  /// stays. False, and nothing done, when there is no such preset.
  bool reset(const std::string& preset);
  /// Carries out a command that came over no line, and returns the reply. Both bare.
  std::string execute(const std::string& command);

  const std::vector<NamedLine>& lines() const { return lines_; }

 private:
  class Watcher;

  void record(const std::string& line, const Exchange& exchange);
  /// Looks for what has happened since the last time.
  void notice();
  void happened(Happening::Kind kind, int subject);
  void save();
  Remembered remembered() { return {device, clock, lines_}; }

  std::deque<Entry> conversation_;
  int lastEntry_ = 0;
  std::deque<Happening> happenings_;
  int lastHappening_ = 0;
  /// What was there when last looked.
  int lastEnded_ = 0, drawerOpenings_ = 0;
  Display display_{};
  std::vector<NamedLine> lines_;
  std::list<Watcher> watchers_;
  std::unique_ptr<Store> store_;
  std::unique_ptr<Keeper> keeper_;
};

}  // namespace mirvane::emulator
