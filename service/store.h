#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace mirvane::service {

/// What became of something that a caller wants done.
enum class State { kQueued, kPrinting, kNeedsPayment, kCommitted, kNotCommitted, kUnknown };
constexpr const char* kStateNames[] = {"queued", "printing", "needs-payment", "committed", "not-committed", "unknown"};
inline const char* nameOf(State state) { return kStateNames[static_cast<std::size_t>(state)]; }
/// Nothing will change it any more but a person who settles what is unknown.
inline bool isOver(State state) { return state >= State::kCommitted; }

/// One thing that a caller wants done, under the caller's own id.
struct Job {
  std::string id;
  /// "receipt", "x", "z", "cash", "drawer" or "display".
  std::string kind;
  State state = State::kQueued;
  /// As it was asked for, in JSON.
  std::string content;
  /// How far it has come, and what came of it, in JSON.
  std::string progress = "{}", result = "{}";
  /// Milliseconds since 1970.
  std::int64_t created = 0, changed = 0;
  /// The place in the queue, from 1, and the number of its last change among all jobs' changes; the store gives both.
  std::int64_t place = 0, version = 0;
  /// In a store that several registers share: the one it is for, or the group of which one will take it, or both.
  std::string registerName = {}, group = {};
};

/// The store cannot be read or written. The text tells why.
struct StoreError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Where everything is kept that must outlive the program. What a call has written is on the disk when it returns, as a
/// whole or not at all, but for what `add` and `save` say. Any thread may call. Everything throws StoreError.
class Store {
 public:
  virtual ~Store() = default;

  /// Whether other services change it too.
  virtual bool isShared() const { return false; }
  /// Whether there is such a register and such a group, where they are named.
  virtual bool isThere(const std::string& name, const std::string& group) { return name.empty() && group.empty(); }
  /// Takes in a new job, for this service's register unless it says another. False when there is one of that id. Unless
  /// it `isTold` at once, it need not be on the disk before the next write or `flush` is.
  virtual bool add(Job& job, bool isTold) = 0;
  /// All that was written is on the disk.
  virtual void flush() {}
  virtual std::optional<Job> find(const std::string& id) = 0;
  /// The job that was begun and is not over, or else the one that has been queued longest, this register's before its
  /// group's. It is this register's from then on.
  virtual std::optional<Job> claim() = 0;
  /// Writes what is new of a job unless somebody else has changed it since it was read: false, and nothing is written.
  /// `seen`, unless it is empty, is remembered with it as "seen"; of a committed job this is the one write that need
  /// not wait for the disk.
  virtual bool save(Job& job, const std::string& seen = {}) = 0;

  struct Page {
    /// Jobs with a lower place, or with a greater version when `isChanges`.
    std::int64_t from = 0;
    bool isChanges = false;
    /// Of one kind and state alone; empty for all.
    std::string kind, state;
    int limit = 50;
  };
  /// Latest first, or in the order of their changes.
  virtual std::vector<Job> list(const Page& page) = 0;
  /// Where other services change jobs too: the highest version.
  virtual std::int64_t latest() { return 0; }
  /// How many jobs are not over.
  virtual int unfinished() = 0;

  /// Something to remember by name; empty when there is nothing.
  virtual std::string recall(const std::string& name) = 0;
  virtual void remember(const std::string& name, const std::string& value) = 0;

  /// The files that came of a job.
  struct File {
    std::string name;
    std::int64_t size = 0;
  };
  virtual void keepFile(const std::string& job, const std::string& name, const std::string& bytes) = 0;
  virtual std::vector<File> files(const std::string& job) = 0;
  virtual std::optional<std::string> file(const std::string& job, const std::string& name) = 0;
};

}  // namespace mirvane::service
