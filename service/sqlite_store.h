#pragma once

#include <memory>
#include <mutex>

#include "service/store.h"

struct sqlite3;

namespace mirvane::service {

/// A store in a file that no other program can have open.
class SqliteStore : public Store {
 public:
  /// Opens or makes the file; ":memory:" keeps nothing.
  explicit SqliteStore(const std::string& path);
  SqliteStore(const SqliteStore&) = delete;
  SqliteStore& operator=(const SqliteStore&) = delete;
  ~SqliteStore() override;

  bool add(Job& job, bool isTold) override;
  void flush() override;
  std::optional<Job> find(const std::string& id) override;
  std::optional<Job> claim() override;
  bool save(Job& job, const std::string& seen) override;
  std::vector<Job> list(const Page& page) override;
  int unfinished() override;
  std::string recall(const std::string& name) override;
  void remember(const std::string& name, const std::string& value) override;
  void keepFile(const std::string& job, const std::string& name, const std::string& bytes) override;
  std::vector<File> files(const std::string& job) override;
  std::optional<std::string> file(const std::string& job, const std::string& name) override;

 private:
  class Statement;
  class Transaction;

  /// Whether the next commit does.
  void waitForDisk(bool waits);
  void write(const std::string& name, const std::string& value);
  void run(const char* sql);
  /// Kept from its first use on.
  Statement& prepared(const char* sql);
  std::int64_t number(const char* sql);
  [[noreturn]] void fail(const std::string& what = {}) const;

  const std::string path_;
  std::mutex mutex_;
  struct Closer {
    void operator()(sqlite3* database) const;
  };
  std::unique_ptr<sqlite3, Closer> database_;
  std::vector<std::unique_ptr<Statement>> statements_;
  std::int64_t version_ = 0;
  bool waitsForDisk_ = true;
  /// Whether a job was added that may not be on the disk.
  bool isBehind_ = false;
};

}  // namespace mirvane::service
