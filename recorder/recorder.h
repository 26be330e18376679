#pragma once

#include <memory>

#include "platform/ports.h"
#include "recorder/secrets.h"

namespace mirvane::recorder {

/// Writes the flight record of this process into a folder, from a thread of its own: whoever tells an event never waits
/// for the disk. What the disk cannot take as fast as it comes is dropped, and how much is told in the record.
///
/// A file holds one day of one process, "line-20261122-till.exe-4711.txt", and has at most 8 MB; then "…-4711-2.txt"
/// goes on. A process keeps its 4 newest files. Files of the record that are older than 31 days are removed.
class Recorder {
 public:
  static constexpr std::uint64_t kLargestFile = 8 << 20;

  /// `folder` has no separator at its end. `files` and `clock` have to outlast the recorder, and its thread where that
  /// hangs in one of their calls.
  Recorder(platform::Files& files, platform::Clock& clock, Text folder, std::uint64_t largestFile = kLargestFile);
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;
  /// Waits until all is written, for two seconds at most.
  ~Recorder();

  /// Adds an event of now. `text` as in Event, with its secrets.
  void add(EventKind kind, std::int32_t number, std::string text);

  /// False once the folder could not be written: nothing is recorded any more.
  bool isAlive() const;

  /// Writes what is left, when the process ends and has no other threads any more.
  void finish();

 private:
  struct Writer;
  /// The thread's too, which may outlive this.
  std::shared_ptr<Writer> writer_;
};

}  // namespace mirvane::recorder
