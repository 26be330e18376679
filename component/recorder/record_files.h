#pragma once

#include <memory>

#include "platform/ports.h"
#include "recorder/record_line.h"

namespace mirvane::recorder {

/// How much is kept.
struct Limits {
  std::uint64_t file = 8 << 20;     ///< bytes of one file
  std::uint64_t folder = 96 << 20;  ///< bytes of all files of the record
  std::size_t files = 48;           ///< files of the record
};

/// The files of a record, to which one thread adds lines.
///
/// A file, "line-000042-20261122-till.exe.txt", holds a day of a program; where a process begins to write stands a
/// "started". The number is one more than the greatest that is there, so it tells which file was begun later, whatever
/// the clock says. Another process of the program goes on in the latest of the day's files that is neither full nor
/// being written. Whoever begins a file removes the oldest beyond the limits, but none that is being written.
///
/// When the file is gone, by itself or with its folder, a new one is begun in the folder that is there now. What could
/// not be written is told in a "lost" as soon as something can be.
class RecordFiles {
 public:
  /// `folder` has no separator at its end. `files` and `clock` have to outlast this.
  RecordFiles(platform::Files& files, platform::Clock& clock, Text folder, const Limits& limits);

  /// Adds the line of an event. kLost counts as events that could not be written.
  void add(const Event& event);
  /// Writes what was added. False when some of it could not be written.
  bool flush();
  /// Closes the file. Somebody else may go on in it.
  void close();

 private:
  struct File {
    std::uint32_t number;
    Text name;
    std::uint64_t size;
  };

  int zoneAt(std::int64_t time);
  Text pathOf(TextView name) const { return folder_ + u"\\" + Text(name); }
  std::vector<File> filesNewestFirst() const;
  bool canGoOn() const;
  bool open();
  void removeOldest(const std::vector<File>& newestFirst) const;
  bool growFile(TextView name);
  bool write();

  platform::Files& files_;
  platform::Clock& clock_;
  const Text folder_;
  const Limits limits_;
  const platform::Process process_ = platform::hostProcess();

  // To be written: that so many events are missing, then lines of one day. And the time of the first of them.
  std::int32_t missing_ = 0;
  std::string lines_;
  Text day_;
  std::int64_t time_ = 0;

  // The file that is being written.
  std::unique_ptr<platform::GrowingFile> file_;
  Text path_;
  Text fileDay_;
  std::uint64_t size_ = 0;
  /// What it needs first: its "started", or the rest of a line that was cut, and how many events that line tells of.
  std::string head_;
  std::int32_t owed_ = 0;
  bool isStarted_ = false;
  /// False where the folder does not show what is in it.
  bool isSeen_ = false;

  int zone_ = 0;
  std::int64_t zoneOf_ = -1;
};

}  // namespace mirvane::recorder
