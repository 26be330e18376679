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

/// The files of a record. One thread adds lines.
///
/// A file, such as "line-000042-20261122-till.exe.txt", holds one day of one program; each process starts with a
/// "started" line. The number is one higher than the highest present, so it shows which file was started later,
/// whatever the clock says. Another process of the program continues the day's latest file that is neither full nor
/// being written. Starting a file deletes the oldest files beyond the limits, but none that is being written.
///
/// If the file is gone, alone or with its folder, a new one is started in the folder that is there now. Events that
/// could not be written are reported in a "lost" line as soon as writing works again.
class RecordFiles {
 public:
  /// `folder` has no separator at its end. `files` and `clock` must outlive this object.
  RecordFiles(platform::Files& files, platform::Clock& clock, Text folder, const Limits& limits);

  /// Adds the line of an event. kLost counts events that could not be written.
  void add(const Event& event);
  /// Writes what was added; false if some of it could not be written.
  bool flush();
  /// Closes the file. Another process may continue it.
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

  // To be written: the number of missing events, then lines of one day; and the time of the first of these.
  std::int32_t missing_ = 0;
  std::string lines_;
  Text day_;
  std::int64_t time_ = 0;

  // The file being written.
  std::unique_ptr<platform::GrowingFile> file_;
  Text path_;
  Text fileDay_;
  std::uint64_t size_ = 0;
  /// What it needs first: its "started", or the rest of a cut-off line, and the number of events that line counts.
  std::string head_;
  std::int32_t owed_ = 0;
  bool isStarted_ = false;
  /// False if the folder's content cannot be listed.
  bool isSeen_ = false;

  int zone_ = 0;
  std::int64_t zoneOf_ = -1;
};

}  // namespace mirvane::recorder
