#include "recorder/recorder.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "version.h"

namespace mirvane::recorder {
namespace {

constexpr std::size_t kMostFiles = 4;
constexpr std::chrono::days kKeptFor{31};
// What may wait for the disk, in bytes.
constexpr std::size_t kMostPending = 4 << 20;
// An event is about this much larger than its text.
constexpr std::size_t kEventSize = 64;
// A text that is longer is shown in several lines.
constexpr std::size_t kLongestText = 4096;
// Events come in groups; one look takes them all, and the caller need not wake anybody up.
constexpr std::chrono::milliseconds kLookEvery{20};
constexpr std::chrono::seconds kAtTheEnd{2};

constexpr TextView kPrefix = u"line-";

Text asciiText(std::string_view text) { return {text.begin(), text.end()}; }

// "20261122" of "2026-11-22 …".
Text dayOf(std::string_view line) {
  return asciiText(std::string(line.substr(0, 4)).append(line.substr(5, 2)).append(line.substr(8, 2)));
}

Text fileSafe(TextView name) {
  Text safe(name);
  std::replace_if(
      safe.begin(), safe.end(),
      [](char16_t c) { return c <= u' ' || TextView(u"\\/:*?\"<>|-").find(c) != TextView::npos; }, u'_');
  return safe;
}

}  // namespace

struct Recorder::Writer {
  Writer(platform::Files& itsFiles, platform::Clock& itsClock, Text itsFolder, std::uint64_t itsLargestFile)
      : files(itsFiles), clock(itsClock), folder(std::move(itsFolder)), largestFile(itsLargestFile) {}

  void run() {
    try {
      while (takeBatch()) {
        if (!writeBatch()) break;
        std::this_thread::sleep_for(kLookEvery);
      }
    } catch (...) {  // no memory: the till needs what there is
    }
    const std::lock_guard lock(mutex);
    isAlive = false;
    pending.clear();
    changed.notify_all();
  }

  // False at the end.
  bool takeBatch() {
    std::unique_lock lock(mutex);
    isIdle = true;
    changed.wait(lock, [this] { return isEnding || !pending.empty(); });
    isIdle = false;
    take();
    return !batch.empty();
  }

  void take() {
    batch.swap(pending);
    pendingSize = 0;
    if (lost > 0) batch.push_back({batch.empty() ? clock.sinceEpoch() : batch.back().time, EventKind::kLost, lost, {}});
    lost = 0;
  }

  bool writeBatch() {
    for (Event& event : batch) {
      event.text = secrets.masked(event.kind, event.text);
      for (std::size_t at = 0; at == 0 || at < event.text.size(); at += kLongestText) {
        std::string text = event.text.substr(at, kLongestText);
        const auto number = isOfLine(event.kind) ? static_cast<std::int32_t>(text.size()) : event.number;
        if (!write({event.time, event.kind, number, std::move(text)})) return false;
      }
    }
    batch.clear();
    return flush();
  }

  bool write(const Event& event) {
    constexpr std::int64_t kQuarterHour = 900000;  // in which no zone changes
    if (event.time / kQuarterHour != zoneOf) {
      zoneOf = event.time / kQuarterHour;
      zone = clock.zoneAt(event.time);
    }
    const std::string line = formatted(event, zone);
    if (file == nullptr || size + line.size() > largestFile || dayOf(line) != day) {
      if (!flush() || !openFile(dayOf(line), event.time)) return false;
    }
    size += line.size();
    lines += line;
    return true;
  }

  bool flush() {
    const bool written = lines.empty() || file->append(lines) == lines.size();
    lines.clear();
    return written;
  }

  bool openFile(const Text& today, std::int64_t now) {
    removeOldFiles(now);
    const platform::Process process = platform::hostProcess();
    part = today == day ? part + 1 : 1;
    day = today;
    const Text path = folder + u"\\" + Text(kPrefix) + day + u"-" + fileSafe(process.name) + u"-" +
                      asciiText(std::to_string(process.id)) +
                      (part > 1 ? u"-" + asciiText(std::to_string(part)) : Text()) + u".txt";
    file = files.grow(path);
    if (file == nullptr) return false;
    own.push_back(path);
    if (own.size() > kMostFiles) {
      files.remove(own.front());
      own.pop_front();
    }
    constexpr int kBits = sizeof(void*) * 8;
    const std::string line = formatted(
        {now, EventKind::kStarted, process.id,
         MIRVANE_PRODUCT " " MIRVANE_VERSION ", " + std::to_string(kBits) + " bit, in " + toUtf8(process.name)},
        zone);
    size = file->size() + line.size();
    lines = line;
    return true;
  }

  // By the day in their names: a copy that somebody made of one is old too.
  void removeOldFiles(std::int64_t now) const {
    const std::int64_t oldest = now - std::chrono::milliseconds(kKeptFor).count();
    const Text firstKept = dayOf(formatted({oldest, {}, 0, {}}, zone));
    for (const Text& name : files.fileNames(folder)) {
      if (!name.starts_with(kPrefix)) continue;
      const Text its = name.substr(kPrefix.size(), firstKept.size());
      const bool isDay = its.size() == firstKept.size() && its.find_first_not_of(u"0123456789") == Text::npos;
      if (isDay && its < firstKept) files.remove(folder + u"\\" + name);
    }
  }

  platform::Files& files;
  platform::Clock& clock;
  const Text folder;
  const std::uint64_t largestFile;

  std::mutex mutex;  // of what follows
  std::condition_variable changed;
  std::vector<Event> pending;
  std::size_t pendingSize = 0;
  std::int32_t lost = 0;
  bool isIdle = false;
  bool isEnding = false;
  std::atomic<bool> isAlive = true;

  // The thread's own.
  std::vector<Event> batch;
  std::string lines;
  Secrets secrets;
  std::unique_ptr<platform::GrowingFile> file;
  std::uint64_t size = 0;
  std::deque<Text> own;
  Text day;
  int part = 1;
  int zone = 0;
  std::int64_t zoneOf = -1;
};

Recorder::Recorder(platform::Files& files, platform::Clock& clock, Text folder, std::uint64_t largestFile)
    : writer_(std::make_shared<Writer>(files, clock, std::move(folder), largestFile)) {
  std::thread([writer = writer_] { writer->run(); }).detach();
}

Recorder::~Recorder() {
  std::unique_lock lock(writer_->mutex);
  writer_->isEnding = true;
  writer_->changed.notify_all();
  writer_->changed.wait_for(lock, kAtTheEnd, [this] { return !writer_->isAlive; });
}

void Recorder::add(EventKind kind, std::int32_t number, std::string text) {
  const std::int64_t now = writer_->clock.sinceEpoch();
  const std::lock_guard lock(writer_->mutex);
  const std::size_t size = text.size() + kEventSize;
  if (!writer_->isAlive || writer_->pendingSize + size > kMostPending) {
    ++writer_->lost;
    return;
  }
  writer_->pendingSize += size;
  writer_->pending.push_back({now, kind, number, std::move(text)});
  if (writer_->isIdle) writer_->changed.notify_all();
}

bool Recorder::isAlive() const { return writer_->isAlive; }

void Recorder::finish() {
  // What the thread was at when it ended is in doubt, and so it is left alone.
  const std::unique_lock lock(writer_->mutex, std::try_to_lock);
  if (!lock.owns_lock() || !writer_->isAlive || !writer_->batch.empty()) return;
  writer_->take();
  writer_->writeBatch();
}

}  // namespace mirvane::recorder
