#include "recorder/recorder.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "recorder/secrets.h"

namespace mirvane::recorder {
namespace {

// How many bytes may wait for the disk.
constexpr std::size_t kMostPending = 4 << 20;
// Approximate overhead of an event beyond its text.
constexpr std::size_t kEventSize = 64;
// A longer text is written as several lines.
constexpr std::size_t kLongestText = 4096;
// Events come in groups: one look takes them all, and the caller need not wake the thread.
constexpr std::chrono::milliseconds kLookEvery{20};
// A missing folder or a full disk does not change quickly by itself.
constexpr std::chrono::seconds kTryAgainAfter{1};
constexpr std::chrono::seconds kAtTheEnd{2};

struct Told : Event {
  bool holdsKey = false;
};

}  // namespace

struct Recorder::Writer {
  Writer(platform::Files& itsFiles, platform::Clock& itsClock, Text itsFolder, const Limits& limits)
      : clock(itsClock), files(itsFiles, itsClock, std::move(itsFolder), limits) {}

  void run() {
    try {
      while (awaitBatch()) {
        if (writeBatch()) {
          std::this_thread::sleep_for(kLookEvery);
        } else {
          std::unique_lock lock(mutex);
          changed.wait_for(lock, kTryAgainAfter, [this] { return isEnding; });
        }
      }
      files.flush();
    } catch (...) {  // out of memory: the till needs what there is
    }
    files.close();
    const std::lock_guard lock(mutex);
    isAlive = false;
    pending.clear();
    changed.notify_all();
  }

  // False at the end of recording.
  bool awaitBatch() {
    std::unique_lock lock(mutex);
    isIdle = true;
    changed.wait(lock, [this] { return isEnding || !pending.empty(); });
    isIdle = false;
    swapBatch();
    return !batch.empty();
  }

  void swapBatch() {
    batch.swap(pending);
    pendingSize = 0;
    if (lost > 0) {
      batch.push_back({{batch.empty() ? clock.sinceEpoch() : batch.back().time, EventKind::kLost, lost, {}}});
    }
    lost = 0;
  }

  bool writeBatch() {
    for (Told& event : batch) {
      event.text = secrets.masked(event.kind, event.text, event.holdsKey);
      for (std::size_t at = 0; at == 0 || at < event.text.size(); at += kLongestText) {
        std::string text = event.text.substr(at, kLongestText);
        const auto number = isOfLine(event.kind) ? static_cast<std::int32_t>(text.size()) : event.number;
        files.add({event.time, event.kind, number, std::move(text)});
      }
    }
    const bool isWritten = files.flush();
    batch.clear();
    return isWritten;
  }

  platform::Clock& clock;

  std::mutex mutex;  // protects what follows
  std::condition_variable changed;
  std::vector<Told> pending;
  std::size_t pendingSize = 0;
  std::int32_t lost = 0;
  bool isIdle = false;
  bool isEnding = false;
  std::atomic<bool> isAlive = true;

  // Used only by the thread.
  std::vector<Told> batch;
  Secrets secrets;
  RecordFiles files;
};

Recorder::Recorder(platform::Files& files, platform::Clock& clock, Text folder, const Limits& limits)
    : writer_(std::make_shared<Writer>(files, clock, std::move(folder), limits)) {
  std::thread([writer = writer_] { writer->run(); }).detach();
}

Recorder::~Recorder() {
  std::unique_lock lock(writer_->mutex);
  writer_->isEnding = true;
  writer_->changed.notify_all();
  writer_->changed.wait_for(lock, kAtTheEnd, [this] { return !writer_->isAlive; });
}

void Recorder::add(EventKind kind, std::int32_t number, std::string text, bool holdsKey) {
  const std::int64_t now = writer_->clock.sinceEpoch();
  const std::lock_guard lock(writer_->mutex);
  const std::size_t size = text.size() + kEventSize;
  if (!writer_->isAlive || writer_->pendingSize + size > kMostPending) {
    ++writer_->lost;
    return;
  }
  writer_->pendingSize += size;
  writer_->pending.push_back({{now, kind, number, std::move(text)}, holdsKey});
  if (writer_->isIdle) writer_->changed.notify_all();
}

bool Recorder::isAlive() const { return writer_->isAlive; }

void Recorder::finish() {
  // If the thread was ended in the middle of its work, its state is unknown, and so it is left alone.
  const std::unique_lock lock(writer_->mutex, std::try_to_lock);
  if (!lock.owns_lock() || !writer_->isAlive || !writer_->batch.empty()) return;
  writer_->swapBatch();
  writer_->writeBatch();
}

}  // namespace mirvane::recorder
