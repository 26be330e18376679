#pragma once

#include <memory>

#include "recorder/record_files.h"

namespace mirvane::recorder {

/// Writes the flight record of this process into a folder, from a thread of its own: whoever tells an event never waits
/// for the disk. What the disk cannot take, or not as fast as it comes, is dropped, and how much is told in the record.
/// While the folder is gone or the disk full it tries again every second that something happens.
class Recorder {
 public:
  /// `folder` has no separator at its end. `files` and `clock` have to outlast the recorder, and its thread where that
  /// hangs in one of their calls.
  Recorder(platform::Files& files, platform::Clock& clock, Text folder, const Limits& limits = {});
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;
  /// Waits until all is written, for two seconds at most.
  ~Recorder();

  /// Adds an event of now. `text` as in Event, with its secrets; of a frame, `holdsKey` says whether it or the reply to
  /// it may hold a key.
  void add(EventKind kind, std::int32_t number, std::string text, bool holdsKey = false);

  /// False once memory has run out: nothing is recorded any more.
  bool isAlive() const;

  /// Writes what is left, when the process ends and has no other threads any more.
  void finish();

 private:
  struct Writer;
  /// The thread's too, which may outlive this.
  std::shared_ptr<Writer> writer_;
};

}  // namespace mirvane::recorder
