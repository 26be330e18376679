#include "http/console.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace mirvane {
namespace {

constexpr std::size_t kMostUnread = 1 << 20;
constexpr std::chrono::milliseconds kFarewell{500};

}  // namespace

struct Console::Queue {
  explicit Queue(std::function<void(std::string_view)> outputNow) : output(std::move(outputNow)) {}

  const std::function<void(std::string_view)> output;
  std::mutex mutex;
  std::condition_variable changed;
  std::string text;
  std::size_t left = 0;
  bool isWriting = false;

  /// Runs in a thread of its own, which the program's end ends, wherever it is.
  void drain() {
    std::unique_lock lock(mutex);
    while (true) {
      changed.wait(lock, [this] { return !text.empty(); });
      std::string piece = std::exchange(text, {});
      if (left > 0)
        piece += "[" + std::to_string(std::exchange(left, 0)) + " bytes omitted: the output was not read]\n";
      isWriting = true;
      lock.unlock();
      output(piece);
      lock.lock();
      isWriting = false;
      changed.notify_all();
    }
  }
};

Console::Console(std::function<void(std::string_view)> output) : queue_(std::make_shared<Queue>(std::move(output))) {
  std::thread([queue = queue_] { queue->drain(); }).detach();
}

Console::~Console() {
  std::unique_lock lock(queue_->mutex);
  queue_->changed.wait_for(lock, kFarewell, [this] { return queue_->text.empty() && !queue_->isWriting; });
}

void Console::write(std::string text) {
  const std::lock_guard lock(queue_->mutex);
  if (queue_->text.size() + text.size() > kMostUnread) {
    queue_->left += text.size();
    return;
  }
  queue_->text += text;
  queue_->changed.notify_all();
}

}  // namespace mirvane
