#pragma once

#include "campaign/till.h"

namespace mirvane::campaign {

/// The file in which a till saves what it is about to do: lines, each with its end. It can be cut anywhere.
struct SavedFile {
  std::string bytes;
  /// Called before each byte that is written.
  std::function<void()> moment;
};

/// One thing that a till has the register do.
struct Act {
  /// "line", "comment", "cash" or "card".
  std::string what;
  /// In cents; of a line that is voided, below 0.
  long amount = 0;
  /// What is printed for it.
  Text detail;
};

/// A till that can say at any moment, after any failure and at its next start, what became of its last act and of its
/// receipt. The same program, function by function, is examples/vbscript/recover.vbs; docs/after-a-failure.md explains
/// it.
class Cashier {
 public:
  Cashier(Till& till, SavedFile& file) : till_(till), file_(file) {}

  struct Answers {
    /// How many acts and how many receipts were begun.
    std::size_t acts = 0, receipts = 0;
    /// What became of the last of them: "committed", "not committed" or "unknown".
    std::string last, receipt;
  };
  /// To be called first, and again whenever the till wants to know.
  Answers recover();
  void beginReceipt();
  /// What became of it.
  std::string perform(const Act& act);

 private:
  /// The register as it stands; empty when it does not tell the same twice.
  std::string takeSnapshot();
  std::string lookOnce();
  static std::string judge(const std::string& what, long amount, const std::string& before, const std::string& now);
  bool isWhollyPaid() const;
  void save(const std::string& line);

  Till& till_;
  SavedFile& file_;
  std::string known_;
};

}  // namespace mirvane::campaign
