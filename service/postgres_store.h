#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <mutex>

#include "service/store.h"

struct pg_conn;
struct pg_result;

namespace mirvane::service {

/// A store in a PostgreSQL database that many services share, one for each register. A job is for one register, or for
/// a group of them, of which the first that is free takes it. What has been begun stays its register's alone.
///
/// The one connection holds the register's lock: when it breaks, the call that finds that out throws, and the next one
/// connects anew unless another service has the register meanwhile.
class PostgresStore : public Store {
 public:
  /// `url` is libpq's, "postgresql://..."; `name` is the register's, `group` may be empty.
  PostgresStore(std::string url, std::string name, std::string group);
  PostgresStore(const PostgresStore&) = delete;
  PostgresStore& operator=(const PostgresStore&) = delete;
  ~PostgresStore() override;

  bool isShared() const override { return true; }
  bool isThere(const std::string& name, const std::string& group) override;
  bool add(Job& job, bool isTold) override;
  std::optional<Job> find(const std::string& id) override;
  std::optional<Job> claim() override;
  bool save(Job& job, const std::string& seen) override;
  std::vector<Job> list(const Page& page) override;
  std::int64_t latest() override;
  int unfinished() override;
  std::string recall(const std::string& name) override;
  void remember(const std::string& name, const std::string& value) override;
  void keepFile(const std::string& job, const std::string& name, const std::string& bytes) override;
  std::vector<File> files(const std::string& job) override;
  std::optional<std::string> file(const std::string& job, const std::string& name) override;

 private:
  class Rows;

  void connect();
  void open();
  /// Connects where that is needed, and runs one statement, which is a transaction by itself.
  template <class... Values>
  Rows ask(const char* sql, const Values&... values);
  Rows send(const char* sql, const std::vector<std::string>& values);
  [[noreturn]] void fail(const char* text);

  const std::string url_, name_, group_;
  std::mutex mutex_;
  struct Closer {
    void operator()(pg_conn* connection) const;
    void operator()(pg_result* result) const;
  };
  std::unique_ptr<pg_conn, Closer> connection_;
  /// The names of the statements that this connection has prepared.
  std::map<const char*, std::string> prepared_;
  std::chrono::steady_clock::time_point nextTry_;
};

}  // namespace mirvane::service
