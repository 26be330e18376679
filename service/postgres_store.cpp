#include "service/postgres_store.h"

#include <libpq-fe.h>

#include <algorithm>

namespace mirvane::service {
namespace {

/// A database that cannot be reached is not waited for by each caller in turn.
constexpr auto kBetweenTries = std::chrono::milliseconds(500);

#define LOCKS "1297503062"
/// The number of a job's last change. Each transaction changes one job, so its own number will do; what is below the
/// oldest one that is under way can have no gap that is filled later. `base` keeps the numbers growing in a database
/// that was moved to another server.
#define VERSION "(SELECT base FROM about) + pg_current_xact_id()::text::bigint"
#define COLUMNS "place, id, kind, state, content, progress, result, created, changed, version, register, team"
#define ROW "SELECT " COLUMNS " FROM jobs "
/// This register's and its group's.
#define OURS "(register = $1 OR (team <> '' AND team = $2))"

// A synchronous commit has everything on the disk before anything is sent, whatever the server's default is. Locks are
// waited for because a predecessor has them until the database sees its end.
constexpr const char* kSession =
    "SET synchronous_commit = on; SET statement_timeout = '10s'; SET lock_timeout = '2s';"
    "SET tcp_keepalives_idle = 5; SET tcp_keepalives_interval = 2; SET tcp_keepalives_count = 3";

// Many services may start at once.
constexpr const char* kSharedTables =
    "BEGIN; SET client_min_messages = warning; SELECT pg_advisory_xact_lock(" LOCKS
    ", 0);"
    "CREATE SCHEMA IF NOT EXISTS mirvane; SET search_path = mirvane;"
    "CREATE TABLE IF NOT EXISTS about (format int, base bigint);"
    "INSERT INTO about SELECT 1, 0 WHERE NOT EXISTS (SELECT FROM about);"
    "CREATE TABLE IF NOT EXISTS registers (number serial PRIMARY KEY, name text UNIQUE, team text NOT NULL);"
    "CREATE TABLE IF NOT EXISTS jobs (place bigserial PRIMARY KEY, id text NOT NULL UNIQUE, kind text NOT NULL,"
    " state smallint NOT NULL, content text NOT NULL, progress text NOT NULL, result text NOT NULL,"
    " created bigint NOT NULL, changed bigint NOT NULL, version bigint NOT NULL,"
    " register text NOT NULL, team text NOT NULL);"
    "CREATE INDEX IF NOT EXISTS own ON jobs (register, (state = 0), place) WHERE state < 3;"
    "CREATE INDEX IF NOT EXISTS offered ON jobs (team, place) WHERE state = 0;"
    "CREATE INDEX IF NOT EXISTS registers_jobs ON jobs (register, place);"
    "CREATE INDEX IF NOT EXISTS teams_jobs ON jobs (team, place) WHERE team <> '';"
    "CREATE INDEX IF NOT EXISTS changes ON jobs (register, version);"
    "CREATE INDEX IF NOT EXISTS teams_changes ON jobs (team, version) WHERE team <> '';"
    "CREATE TABLE IF NOT EXISTS files (job text, name text, bytes bytea, PRIMARY KEY (job, name));"
    "CREATE TABLE IF NOT EXISTS memory (register text, name text, value text, PRIMARY KEY (register, name));"
    "UPDATE about SET base = (SELECT max(version) FROM jobs) WHERE (SELECT max(version) FROM jobs) >"
    " base + pg_snapshot_xmax(pg_current_snapshot())::text::bigint;"
    "COMMIT";

std::string textOf(const std::string& value) { return value; }
std::string textOf(std::int64_t value) { return std::to_string(value); }

std::int64_t indexOf(const std::string& state) {
  const auto* const name = std::find(std::begin(kStateNames), std::end(kStateNames), state);
  return name == std::end(kStateNames) ? -1 : name - std::begin(kStateNames);
}

}  // namespace

class PostgresStore::Rows {
 public:
  explicit Rows(PGresult* result) : result_(result) {}

  int count() const { return PQntuples(result_.get()); }
  std::string text(int row, int column) const {
    return {PQgetvalue(result_.get(), row, column), static_cast<std::size_t>(PQgetlength(result_.get(), row, column))};
  }
  std::int64_t number(int row, int column) const { return std::stoll(text(row, column)); }
  Job job(int row) const {
    Job job{text(row, 1), text(row, 2), static_cast<State>(number(row, 3)), text(row, 4), text(row, 5), text(row, 6)};
    job.created = number(row, 7);
    job.changed = number(row, 8);
    job.place = number(row, 0);
    job.version = number(row, 9);
    job.registerName = text(row, 10);
    job.group = text(row, 11);
    return job;
  }
  std::optional<Job> oneJob() const { return count() > 0 ? std::optional(job(0)) : std::nullopt; }
  ExecStatusType status() const { return PQresultStatus(result_.get()); }

 private:
  std::unique_ptr<PGresult, Closer> result_;
};

void PostgresStore::Closer::operator()(pg_conn* connection) const { PQfinish(connection); }
void PostgresStore::Closer::operator()(pg_result* result) const { PQclear(result); }

PostgresStore::PostgresStore(std::string url, std::string name, std::string group)
    : url_(std::move(url)), name_(std::move(name)), group_(std::move(group)) {
  connect();
}

PostgresStore::~PostgresStore() = default;

void PostgresStore::connect() {
  if (connection_ && PQstatus(connection_.get()) == CONNECTION_OK) return;
  if (std::chrono::steady_clock::now() < nextTry_) throw StoreError("the database does not answer");
  nextTry_ = std::chrono::steady_clock::now() + kBetweenTries;
  prepared_.clear();
  // Whatever the URL says itself comes last, and counts.
  const char* const names[] = {"client_encoding", "connect_timeout", "tcp_user_timeout", "dbname", nullptr};
  const char* const values[] = {"UTF8", "5", "10000", url_.c_str(), nullptr};
  connection_.reset(PQconnectdbParams(names, values, 1));
  if (PQstatus(connection_.get()) != CONNECTION_OK) {
    const std::string why = PQerrorMessage(connection_.get());
    connection_.reset();
    throw StoreError("the database: " + why.substr(0, why.find('\n')));
  }
  try {
    open();
  } catch (const StoreError&) {
    // Nothing is done over a connection that does not hold the register.
    if (PQstatus(connection_.get()) == CONNECTION_OK) connection_.reset();
    throw;
  }
  nextTry_ = {};
}

void PostgresStore::open() {
  for (const char* sql : {kSharedTables, kSession}) {
    const Rows rows(PQexec(connection_.get(), sql));
    if (rows.status() == PGRES_FATAL_ERROR) fail(PQerrorMessage(connection_.get()));
  }
  if (send("SELECT format FROM about", {}).number(0, 0) != 1) fail("the database was written by another version");
  send("INSERT INTO registers (name, team) VALUES ($1, $2) ON CONFLICT (name) DO NOTHING", {name_, group_});
  try {
    send("SELECT pg_advisory_lock(" LOCKS ", number) FROM registers WHERE name = $1", {name_});
  } catch (const StoreError&) {
    if (PQstatus(connection_.get()) != CONNECTION_OK) throw;
    fail(("another service has the register " + name_).c_str());
  }
  send("UPDATE registers SET team = $2 WHERE name = $1 AND team <> $2", {name_, group_});
}

bool PostgresStore::isThere(const std::string& name, const std::string& group) {
  const std::lock_guard lock(mutex_);
  return ask("SELECT FROM registers WHERE ($1 = '' OR name = $1) AND ($2 = '' OR team = $2) LIMIT 1", name, group)
             .count() > 0;
}

bool PostgresStore::add(Job& job, bool /*isTold*/) {
  const std::lock_guard lock(mutex_);
  if (job.registerName.empty() && job.group.empty()) job.registerName = name_;
  const Rows rows =
      ask("INSERT INTO jobs (id, kind, state, content, progress, result, created, changed, version, register, team)"
          " VALUES ($1, $2, $3, $4, $5, $6, $7, $8, " VERSION
          ", $9, $10) ON CONFLICT (id) DO NOTHING"
          " RETURNING place, version",
          job.id, job.kind, static_cast<std::int64_t>(job.state), job.content, job.progress, job.result, job.created,
          job.changed, job.registerName, job.group);
  if (rows.count() == 0) return false;
  job.place = rows.number(0, 0);
  job.version = rows.number(0, 1);
  return true;
}

std::optional<Job> PostgresStore::find(const std::string& id) {
  const std::lock_guard lock(mutex_);
  return ask(ROW "WHERE id = $1", id).oneJob();
}

std::optional<Job> PostgresStore::claim() {
  const std::lock_guard lock(mutex_);
  std::optional<Job> own =
      ask(ROW "WHERE register = $1 AND state < 3 ORDER BY (state = 0), place LIMIT 1", name_).oneJob();
  if (own || group_.empty()) return own;
  // Also what a register has taken and not begun, whose service has ended: nobody holds its lock.
  return ask("UPDATE jobs SET register = $1, version = " VERSION
             " WHERE place = (SELECT place FROM jobs WHERE team = $2 AND state = 0 AND (register = '' OR register NOT "
             "IN"
             " (SELECT name FROM registers JOIN pg_locks ON objid = number::oid WHERE locktype = 'advisory' AND "
             "classid = " LOCKS
             " AND database = (SELECT oid FROM pg_database WHERE datname = current_database())))"
             " ORDER BY place LIMIT 1 FOR UPDATE SKIP LOCKED) RETURNING " COLUMNS,
             name_, group_)
      .oneJob();
}

bool PostgresStore::save(Job& job, const std::string& seen) {
  const std::lock_guard lock(mutex_);
  const Rows rows = ask(
      "WITH saved AS (UPDATE jobs SET state = $1, progress = $2, result = $3, changed = $4, version = " VERSION
      " WHERE id = $5 AND version = $6 RETURNING version), remembered AS (INSERT INTO memory SELECT $7, 'seen', "
      "$8::text"
      " FROM saved WHERE $8::text <> '' ON CONFLICT (register, name) DO UPDATE SET value = excluded.value)"
      " SELECT version FROM saved",
      static_cast<std::int64_t>(job.state), job.progress, job.result, job.changed, job.id, job.version, name_, seen);
  if (rows.count() == 0) return false;
  job.version = rows.number(0, 0);
  return true;
}

std::vector<Job> PostgresStore::list(const Page& page) {
  const std::lock_guard lock(mutex_);
  const std::int64_t limit = page.limit;
  const auto rows = [&] {
    if (page.isChanges) {
      return ask(ROW "WHERE " OURS
                     " AND version > $3 AND version < (SELECT base FROM about) +"
                     " pg_snapshot_xmin(pg_current_snapshot())::text::bigint ORDER BY version LIMIT $4",
                 name_, group_, page.from, limit);
    }
    return ask(ROW "WHERE " OURS
                   " AND ($3::bigint = 0 OR place < $3) AND ($4 = '' OR kind = $4) AND ($5::int < 0 OR state = $5)"
                   " ORDER BY place DESC LIMIT $6",
               name_, group_, page.from, page.kind, indexOf(page.state), limit);
  }();
  std::vector<Job> jobs;
  for (int i = 0; i < rows.count(); ++i) jobs.push_back(rows.job(i));
  return jobs;
}

std::int64_t PostgresStore::latest() {
  const std::lock_guard lock(mutex_);
  return ask("SELECT coalesce(greatest((SELECT max(version) FROM jobs WHERE register = $1),"
             " (SELECT max(version) FROM jobs WHERE team <> '' AND team = $2)), 0)",
             name_, group_)
      .number(0, 0);
}

int PostgresStore::unfinished() {
  const std::lock_guard lock(mutex_);
  return static_cast<int>(
      ask("SELECT (SELECT count(*) FROM jobs WHERE register = $1 AND state < 3) +"
          " (SELECT count(*) FROM jobs WHERE $2 <> '' AND team = $2 AND register = '' AND state = 0)",
          name_, group_)
          .number(0, 0));
}

std::string PostgresStore::recall(const std::string& name) {
  const std::lock_guard lock(mutex_);
  const Rows rows = ask("SELECT value FROM memory WHERE register = $1 AND name = $2", name_, name);
  return rows.count() > 0 ? rows.text(0, 0) : "";
}

void PostgresStore::remember(const std::string& name, const std::string& value) {
  const std::lock_guard lock(mutex_);
  ask("INSERT INTO memory VALUES ($1, $2, $3) ON CONFLICT (register, name) DO UPDATE SET value = excluded.value", name_,
      name, value);
}

void PostgresStore::keepFile(const std::string& job, const std::string& name, const std::string& bytes) {
  const std::lock_guard lock(mutex_);
  constexpr char kDigits[] = "0123456789abcdef";
  std::string hex = "\\x";
  for (const unsigned char byte : bytes) hex.append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 15]);
  ask("INSERT INTO files VALUES ($1, $2, $3) ON CONFLICT (job, name) DO UPDATE SET bytes = excluded.bytes", job, name,
      hex);
}

std::vector<Store::File> PostgresStore::files(const std::string& job) {
  const std::lock_guard lock(mutex_);
  const Rows rows = ask("SELECT name, length(bytes) FROM files WHERE job = $1 ORDER BY name COLLATE \"C\"", job);
  std::vector<File> all;
  for (int i = 0; i < rows.count(); ++i) all.push_back({rows.text(i, 0), rows.number(i, 1)});
  return all;
}

std::optional<std::string> PostgresStore::file(const std::string& job, const std::string& name) {
  const std::lock_guard lock(mutex_);
  const Rows rows = ask("SELECT bytes FROM files WHERE job = $1 AND name = $2", job, name);
  if (rows.count() == 0) return std::nullopt;
  std::size_t size = 0;
  const std::string text = rows.text(0, 0);
  const std::unique_ptr<unsigned char, decltype(&PQfreemem)> bytes(
      PQunescapeBytea(reinterpret_cast<const unsigned char*>(text.c_str()), &size), &PQfreemem);
  return std::string(reinterpret_cast<const char*>(bytes.get()), size);
}

template <class... Values>
PostgresStore::Rows PostgresStore::ask(const char* sql, const Values&... values) {
  connect();
  return send(sql, {textOf(values)...});
}

PostgresStore::Rows PostgresStore::send(const char* sql, const std::vector<std::string>& values) {
  const auto [statement, isNew] = prepared_.try_emplace(sql, "s" + std::to_string(prepared_.size()));
  const std::string name = statement->second;
  if (isNew) {
    const Rows made(PQprepare(connection_.get(), name.c_str(), sql, 0, nullptr));
    if (made.status() != PGRES_COMMAND_OK) {
      prepared_.erase(statement);
      fail(PQerrorMessage(connection_.get()));
    }
  }
  std::vector<const char*> texts;
  for (const std::string& value : values) texts.push_back(value.c_str());
  Rows rows(PQexecPrepared(connection_.get(), name.c_str(), static_cast<int>(texts.size()), texts.data(), nullptr,
                           nullptr, 0));
  if (rows.status() != PGRES_COMMAND_OK && rows.status() != PGRES_TUPLES_OK) fail(PQerrorMessage(connection_.get()));
  return rows;
}

void PostgresStore::fail(const char* text) {
  const std::string why = text;
  throw StoreError("the database: " + why.substr(0, why.find('\n')));
}

}  // namespace mirvane::service
