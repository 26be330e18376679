#pragma once

#include <memory>

#include "recorder/record_files.h"

namespace mirvane::recorder {

/// Writes this process's flight record into a folder, on its own thread: adding an event never waits for the disk.
/// Events that the disk cannot take fast enough are dropped, and the record says how many. If the folder is gone or the
/// disk is full, the recorder tries again with later events, at most once a second.
class Recorder {
 public:
  /// `folder` has no separator at its end. `files` and `clock` must outlive the recorder, and also its thread if that
  /// hangs in one of their calls.
  Recorder(platform::Files& files, platform::Clock& clock, Text folder, const Limits& limits = {});
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;
  /// Waits until everything is written, for at most two seconds.
  ~Recorder();

  /// Adds an event with the present time. `text` as in Event, but with its secrets. For a frame, `holdsKey` says
  /// whether it or its reply may hold a key.
  void add(EventKind kind, std::int32_t number, std::string text, bool holdsKey = false);

  /// False once memory has run out: recording has ended.
  bool isAlive() const;

  /// Writes the rest when the process ends and has no other threads left.
  void finish();

 private:
  struct Writer;
  /// Shared with the thread, which may outlive this object.
  std::shared_ptr<Writer> writer_;
};

}  // namespace mirvane::recorder
