#pragma once

#include <atomic>

#include "service/register.h"
#include "service/store.h"

namespace mirvane::service {

/// Does the jobs in the store one after the other, each exactly once. Before each step that books, the step is saved in
/// the store; after an interruption the worker asks the register what happened to it, as docs/after-a-failure.md
/// describes.
class Worker {
 public:
  Worker(platform::Platform& machine, Store& store, Board& board, const Text& port, TextView recordFolder = {});

  /// Does one job, or checks the register if there is none; false if nothing could be done.
  bool step();
  /// Does all jobs until `stop`, which lets the current job finish. `sleep` waits for a request, or for that many
  /// milliseconds.
  void run(const std::function<void(std::uint32_t milliseconds)>& sleep);
  /// There is work; may be called from any thread, as may `stop`.
  void wake();
  void stop() { isStopped_ = true; }

 private:
  /// How far a receipt has got.
  struct Progress;

  bool work();
  bool makeReady();
  bool isOlderThanRegister(const Picture& now);
  void hold(const Picture& now);
  void lookIdly();
  void perform(Job& job);
  /// False if the file could not be stored.
  bool keepFile(const std::string& name, std::string_view bytes);

  // Receipts: worker_receipt.cpp.
  void performReceipt(Job& job);
  void begin(Job& job, Progress& progress);
  bool ring(const Receipt& receipt, const Picture& before);
  void undo(Job& job, Progress& progress);
  void pay(Job& job, const Receipt& receipt, Progress& progress);
  void needPayment(Job& job, const Receipt& receipt, const Progress& progress);
  void judgePayment(Job& job, const Receipt& receipt, Progress& progress);
  void settleOpen(Job& job, const Receipt& receipt, Progress& progress);
  void cancelOpen(Job& job, Progress& progress);
  void finishReceipt(Job& job, const Receipt& receipt, const Progress& progress);

  // Everything else: worker_documents.cpp.
  void performCash(Job& job);
  void performClosing(Job& job);
  /// What leaves no trace in the register, and so is repeated if it was not seen to finish.
  void performHarmless(Job& job, const std::function<bool()>& act);

  /// A snapshot of the register; waits until it gives one.
  Picture mustLook();
  /// The last snapshot, while nothing can have changed the register.
  Picture known();
  /// Whether somebody has requested to cancel the job.
  bool isCancelled(const Job& job);

  void save(Job& job, const http::Json& progress);
  void finish(Job& job, State state, http::Json result, const std::optional<Picture>& now = {});
  void refuse(Job& job, std::int16_t code, const std::string& text);
  void leaveUnknown(Job& job, const std::string& why, const Picture& before, const Picture& now);

  Store& store_;
  Board& board_;
  Register register_;
  std::optional<Picture> known_;
  /// The job whose journal files are being received.
  std::string atWork_;
  /// The version of a job that waits for its caller.
  std::int64_t pausedAt_ = 0;
  bool isReady_ = false;
  std::atomic<bool> hasWork_ = false, isStopped_ = false;
  double nextLook_ = 0;
};

}  // namespace mirvane::service
