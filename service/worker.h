#pragma once

#include <atomic>

#include "service/register.h"
#include "service/store.h"

namespace mirvane::service {

/// Does what the store holds, one job after the other, each exactly once. What it is about to do that books is in the
/// store before; after an end of any kind it asks the register what became of that, as docs/after-a-failure.md says.
class Worker {
 public:
  Worker(platform::Platform& machine, Store& store, Board& board, const Text& port, TextView recordFolder = {});

  /// One job, or a look at the register when there is none. False when nothing could be done.
  bool step();
  /// Does all that there is to do, until `stop`, which lets the job at hand come to its end: `sleep` waits for a wish,
  /// or for so many milliseconds.
  void run(const std::function<void(std::uint32_t milliseconds)>& sleep);
  /// There is something to do: from any thread, as `stop`.
  void wake();
  void stop() { isStopped_ = true; }

 private:
  /// How far a receipt has come.
  struct Progress;

  bool work();
  bool makeReady();
  bool isOlderThanRegister(const Picture& now);
  void hold(const Picture& now);
  void lookIdly();
  void perform(Job& job);
  /// False when it could not be.
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
  /// What leaves nothing in the register, and so is done again when it was not seen to its end.
  void performHarmless(Job& job, const std::function<bool()>& act);

  /// The register as it stands; waits until it tells.
  Picture mustLook();
  /// What stood last, as long as nothing can have changed it.
  Picture known();
  /// The job as somebody has wished to end it.
  bool isCancelled(const Job& job);

  void save(Job& job, const http::Json& progress);
  void finish(Job& job, State state, http::Json result, const std::optional<Picture>& now = {});
  void refuse(Job& job, std::int16_t code, const std::string& text);
  void leaveUnknown(Job& job, const std::string& why, const Picture& before, const Picture& now);

  Store& store_;
  Board& board_;
  Register register_;
  std::optional<Picture> known_;
  /// That has been begun, whose files are coming.
  std::string atWork_;
  /// The version of a job that waits for its caller.
  std::int64_t pausedAt_ = 0;
  bool isReady_ = false;
  std::atomic<bool> hasWork_ = false, isStopped_ = false;
  double nextLook_ = 0;
};

}  // namespace mirvane::service
