#include "service/sqlite_store.h"

#include <sqlite3.h>

#include <algorithm>
#include <utility>

namespace mirvane::service {
namespace {

/// Tells our files from other databases: "MVSV".
constexpr int kApplication = 0x4D565356;
constexpr int kFormat = 1;

constexpr const char* kNotWritable = "cannot be written: look at its folder, and at the rights of both";

constexpr const char* kTables =
    "CREATE TABLE jobs (place INTEGER PRIMARY KEY AUTOINCREMENT, id TEXT NOT NULL UNIQUE, kind TEXT NOT NULL,"
    " state INTEGER NOT NULL, content TEXT NOT NULL, progress TEXT NOT NULL, result TEXT NOT NULL,"
    " created INTEGER NOT NULL, changed INTEGER NOT NULL, version INTEGER NOT NULL UNIQUE);"
    "CREATE INDEX unfinished ON jobs (place) WHERE state < 3;"
    "CREATE INDEX states ON jobs (state, place);"
    "CREATE INDEX kinds ON jobs (kind, place);"
    "CREATE TABLE files (job TEXT, name TEXT, bytes BLOB, PRIMARY KEY (job, name)) WITHOUT ROWID;"
    "CREATE TABLE memory (name TEXT PRIMARY KEY, value TEXT) WITHOUT ROWID;";

#define JOB "SELECT place, id, kind, state, content, progress, result, created, changed, version FROM jobs "

}  // namespace

class SqliteStore::Statement {
 public:
  Statement(SqliteStore& store, const char* sql) : text(sql), store_(store) {
    if (sqlite3_prepare_v2(store.database_.get(), sql, -1, &handle_, nullptr) != SQLITE_OK) store.fail();
  }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  ~Statement() { sqlite3_finalize(handle_); }

  /// Begins anew with these values.
  template <class... Values>
  Statement& with(const Values&... values) {
    sqlite3_reset(handle_);
    int at = 0;
    (bind(++at, values), ...);
    return *this;
  }
  /// Whether there is another row. Behind the last one the statement holds nothing any more.
  bool step() {
    const int result = sqlite3_step(handle_);
    if (result == SQLITE_ROW) return true;
    // The text of the failure goes with the next call.
    if (result != SQLITE_DONE) {
      const std::string why = sqlite3_errmsg(store_.database_.get());
      sqlite3_reset(handle_);
      store_.fail(why);
    }
    sqlite3_reset(handle_);
    return false;
  }
  std::int64_t number(int column) const { return sqlite3_column_int64(handle_, column); }
  std::string bytes(int column) const {
    const void* data = sqlite3_column_blob(handle_, column);
    return {static_cast<const char*>(data), static_cast<std::size_t>(sqlite3_column_bytes(handle_, column))};
  }
  Job job() const {
    return {bytes(1),  bytes(2), static_cast<State>(number(3)), bytes(4), bytes(5), bytes(6), number(7), number(8),
            number(0), number(9)};
  }
  std::optional<Job> oneJob() {
    std::optional<Job> found;
    if (step()) found = job();
    sqlite3_reset(handle_);
    return found;
  }

  const char* const text;

 private:
  void bind(int at, std::int64_t value) { sqlite3_bind_int64(handle_, at, value); }
  void bind(int at, const std::string& value) {
    sqlite3_bind_text(handle_, at, value.data(), static_cast<int>(value.size()), SQLITE_TRANSIENT);
  }

  SqliteStore& store_;
  sqlite3_stmt* handle_ = nullptr;
};

/// What is written within is there as a whole or not at all. A lone statement is that by itself.
class SqliteStore::Transaction {
 public:
  explicit Transaction(SqliteStore& store) : store_(store) { store_.run("BEGIN IMMEDIATE"); }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  ~Transaction() {
    if (!isOver_) sqlite3_exec(store_.database_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
  }
  void commit() {
    store_.run("COMMIT");
    isOver_ = true;
  }

 private:
  SqliteStore& store_;
  bool isOver_ = false;
};

void SqliteStore::Closer::operator()(sqlite3* database) const { sqlite3_close(database); }

SqliteStore::SqliteStore(const std::string& path) : path_(path) {
  sqlite3* opened = nullptr;
  const int result = sqlite3_open(path.c_str(), &opened);
  database_.reset(opened);
  if (result != SQLITE_OK) fail();
  if (sqlite3_db_readonly(opened, "main") == 1) fail(kNotWritable);
  // Two services at one register would each hold the other's receipts for strangers. FULL has each commit on the disk
  // before anything is sent.
  run("PRAGMA locking_mode = EXCLUSIVE");
  run("PRAGMA journal_mode = WAL");
  run("PRAGMA synchronous = FULL");
  Transaction transaction(*this);
  const bool isEmpty = number("SELECT count(*) FROM sqlite_schema") == 0;
  if (!isEmpty && number("PRAGMA application_id") != kApplication) fail("not a service's database");
  if (!isEmpty && number("PRAGMA user_version") != kFormat) fail("written by another version");
  if (isEmpty) {
    run(kTables);
    run(("PRAGMA application_id = " + std::to_string(kApplication)).c_str());
    run(("PRAGMA user_version = " + std::to_string(kFormat)).c_str());
  } else {
    // A disk that takes no more, or a file that must not be written, is told now.
    run("INSERT OR REPLACE INTO memory VALUES ('opened', datetime())");
  }
  version_ = number("SELECT coalesce(max(version), 0) FROM jobs");
  transaction.commit();
}

SqliteStore::~SqliteStore() = default;

bool SqliteStore::add(Job& job, bool isTold) {
  const std::lock_guard lock(mutex_);
  waitForDisk(isTold);
  Statement& statement = prepared(
      "INSERT INTO jobs (id, kind, state, content, progress, result, created, changed, version)"
      " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?) ON CONFLICT (id) DO NOTHING");
  statement.with(job.id, job.kind, static_cast<std::int64_t>(job.state), job.content, job.progress, job.result,
                 job.created, job.changed, version_ + 1);
  statement.step();
  if (sqlite3_changes(database_.get()) == 0) return false;
  job.version = ++version_;
  job.place = sqlite3_last_insert_rowid(database_.get());
  isBehind_ = !isTold;
  return true;
}

void SqliteStore::flush() {
  const std::lock_guard lock(mutex_);
  if (isBehind_) write("flushed", "");
}

std::optional<Job> SqliteStore::find(const std::string& id) {
  const std::lock_guard lock(mutex_);
  return prepared(JOB "WHERE id = ?").with(id).oneJob();
}

std::optional<Job> SqliteStore::claim() {
  const std::lock_guard lock(mutex_);
  // One at a time is begun, and it was the oldest.
  return prepared(JOB "WHERE state < 3 ORDER BY place LIMIT 1").with().oneJob();
}

bool SqliteStore::save(Job& job, const std::string& seen) {
  const std::lock_guard lock(mutex_);
  // A power cut may take it back to what was announced before, and the register then tells it again.
  const bool isTold = job.state == State::kCommitted && !seen.empty();
  waitForDisk(!isTold);
  Transaction transaction(*this);
  prepared("UPDATE jobs SET state = ?, progress = ?, result = ?, changed = ?, version = ? WHERE id = ? AND version = ?")
      .with(static_cast<std::int64_t>(job.state), job.progress, job.result, job.changed, version_ + 1, job.id,
            job.version)
      .step();
  if (sqlite3_changes(database_.get()) == 0) return false;
  if (!seen.empty()) prepared("INSERT OR REPLACE INTO memory VALUES ('seen', ?)").with(seen).step();
  transaction.commit();
  isBehind_ = isBehind_ && isTold;
  job.version = ++version_;
  return true;
}

std::vector<Job> SqliteStore::list(const Page& page) {
  const std::lock_guard lock(mutex_);
  const auto* const name = std::find(std::begin(kStateNames), std::end(kStateNames), page.state);
  const std::int64_t state = name == std::end(kStateNames) ? -1 : name - std::begin(kStateNames);
  const std::int64_t before = page.from > 0 ? page.from : INT64_MAX;
  Statement* rows = nullptr;
  const std::int64_t limit = page.limit;
  if (page.isChanges) {
    rows = &prepared(JOB "WHERE version > ? ORDER BY version LIMIT ?").with(page.from, limit);
  } else if (state >= 0) {
    rows = &prepared(JOB "WHERE state = ? AND place < ? AND (? = '' OR kind = ?) ORDER BY place DESC LIMIT ?")
                .with(state, before, page.kind, page.kind, limit);
  } else if (!page.kind.empty()) {
    rows = &prepared(JOB "WHERE kind = ? AND place < ? ORDER BY place DESC LIMIT ?").with(page.kind, before, limit);
  } else {
    rows = &prepared(JOB "WHERE place < ? ORDER BY place DESC LIMIT ?").with(before, limit);
  }
  std::vector<Job> jobs;
  while (rows->step()) jobs.push_back(rows->job());
  return jobs;
}

int SqliteStore::unfinished() {
  const std::lock_guard lock(mutex_);
  return static_cast<int>(number("SELECT count(*) FROM jobs WHERE state < 3"));
}

std::string SqliteStore::recall(const std::string& name) {
  const std::lock_guard lock(mutex_);
  Statement& row = prepared("SELECT value FROM memory WHERE name = ?").with(name);
  std::string value = row.step() ? row.bytes(0) : "";
  row.with();
  return value;
}

void SqliteStore::remember(const std::string& name, const std::string& value) {
  const std::lock_guard lock(mutex_);
  write(name, value);
}

void SqliteStore::keepFile(const std::string& job, const std::string& name, const std::string& bytes) {
  const std::lock_guard lock(mutex_);
  waitForDisk(true);
  prepared("INSERT OR REPLACE INTO files VALUES (?, ?, ?)").with(job, name, bytes).step();
}

std::vector<Store::File> SqliteStore::files(const std::string& job) {
  const std::lock_guard lock(mutex_);
  std::vector<File> all;
  Statement& rows =
      prepared("SELECT name, length(CAST(bytes AS BLOB)) FROM files WHERE job = ? ORDER BY name").with(job);
  while (rows.step()) all.push_back({rows.bytes(0), rows.number(1)});
  return all;
}

std::optional<std::string> SqliteStore::file(const std::string& job, const std::string& name) {
  const std::lock_guard lock(mutex_);
  Statement& row = prepared("SELECT bytes FROM files WHERE job = ? AND name = ?").with(job, name);
  std::optional<std::string> bytes;
  if (row.step()) bytes = row.bytes(0);
  row.with();
  return bytes;
}

void SqliteStore::write(const std::string& name, const std::string& value) {
  waitForDisk(true);
  prepared("INSERT OR REPLACE INTO memory VALUES (?, ?)").with(name, value).step();
  isBehind_ = false;
}

void SqliteStore::waitForDisk(bool waits) {
  if (std::exchange(waitsForDisk_, waits) == waits) return;
  run(waits ? "PRAGMA synchronous = FULL" : "PRAGMA synchronous = NORMAL");
}

void SqliteStore::run(const char* sql) {
  if (sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK) fail();
}

SqliteStore::Statement& SqliteStore::prepared(const char* sql) {
  const auto found = std::ranges::find(statements_, sql, [](const auto& statement) { return statement->text; });
  if (found != statements_.end()) return **found;
  return *statements_.emplace_back(std::make_unique<Statement>(*this, sql));
}

std::int64_t SqliteStore::number(const char* sql) {
  Statement statement(*this, sql);
  return statement.step() ? statement.number(0) : 0;
}

void SqliteStore::fail(const std::string& what) const {
  const int code = sqlite3_errcode(database_.get());
  const bool isRefused = code == SQLITE_READONLY || code == SQLITE_CANTOPEN;
  const std::string why = !what.empty() ? what : isRefused ? kNotWritable : sqlite3_errmsg(database_.get());
  throw StoreError(path_ + ": " + (code == SQLITE_BUSY ? "another program has it open" : why));
}

}  // namespace mirvane::service
