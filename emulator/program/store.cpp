#include "emulator/program/store.h"

#include <sqlite3.h>

#include <algorithm>
#include <filesystem>

#include "http/machine.h"

namespace mirvane::emulator {
namespace {

/// Tells our files from other databases: "MVER".
constexpr int kApplication = 0x4D564552;
constexpr int kFormat = 2;

constexpr const char* kTables =
    "CREATE TABLE memory (name TEXT PRIMARY KEY, value) WITHOUT ROWID;"
    "CREATE TABLE journal (tape INTEGER, start INTEGER, bytes BLOB, PRIMARY KEY (tape, start));";

}  // namespace

/// A prepared statement, bound and stepped anew each time.
struct Store::Statement {
  Statement(const Store& owner, const char* sql) : store(owner) {
    if (sqlite3_prepare_v2(store.database_.get(), sql, -1, &handle, nullptr) != SQLITE_OK) store.fail("");
  }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  ~Statement() { sqlite3_finalize(handle); }

  Statement& bind(int at, std::int64_t value) {
    sqlite3_bind_int64(handle, at, value);
    return *this;
  }
  Statement& bind(int at, std::string_view text) {
    sqlite3_bind_text(handle, at, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
    return *this;
  }
  Statement& bindBytes(int at, std::string_view bytes) {
    sqlite3_bind_blob(handle, at, bytes.data(), static_cast<int>(bytes.size()), SQLITE_STATIC);
    return *this;
  }
  /// Whether there is another row.
  bool step() const {
    const int result = sqlite3_step(handle);
    if (result != SQLITE_ROW && result != SQLITE_DONE) store.fail("");
    return result == SQLITE_ROW;
  }
  void run() {
    step();
    sqlite3_reset(handle);
  }
  std::int64_t number(int column) const { return sqlite3_column_int64(handle, column); }
  std::string bytes(int column) const {
    const void* data = sqlite3_column_blob(handle, column);
    return {static_cast<const char*>(data), static_cast<std::size_t>(sqlite3_column_bytes(handle, column))};
  }

  const Store& store;
  sqlite3_stmt* handle = nullptr;
};

class Store::StoredTape : public Tape {
 public:
  StoredTape(Store& store, int number) : store_(store), number_(number) {
    Statement rows(store, "SELECT start, length(bytes) FROM journal WHERE tape = ? ORDER BY start DESC LIMIT 1");
    if (rows.bind(1, number).step()) written_ = static_cast<std::size_t>(rows.number(0) + rows.number(1));
  }
  ~StoredTape() override { store_.tapes_.erase(number_); }
  StoredTape(const StoredTape&) = delete;
  StoredTape& operator=(const StoredTape&) = delete;

  void append(std::string_view bytes) override { fresh_ += bytes; }
  std::size_t size() const override { return written_ + fresh_.size(); }
  std::string read(std::size_t position, std::size_t count) const override {
    const std::size_t end = position + std::min(count, size() - std::min(position, size()));
    std::string bytes;
    Statement& rows = *store_.read_;
    rows.bind(1, number_).bind(2, static_cast<std::int64_t>(position)).bind(3, static_cast<std::int64_t>(end));
    while (position + bytes.size() < std::min(end, written_) && rows.step()) {
      const auto start = static_cast<std::size_t>(rows.number(0));
      const std::string piece = rows.bytes(1);
      const std::size_t skipped = position + bytes.size() - start;
      if (skipped > piece.size()) break;
      bytes += piece.substr(skipped, end - position - bytes.size());
    }
    sqlite3_reset(rows.handle);
    if (position + bytes.size() < std::min(end, written_)) store_.fail("the journal has a gap");
    if (end > written_) {
      const std::size_t from = std::max(position, written_);
      bytes += fresh_.substr(from - written_, end - from);
    }
    return bytes;
  }
  void clear() override {
    isCleared_ = true;
    written_ = 0;
    fresh_.clear();
  }

  bool hasUnwritten() const { return isCleared_ || !fresh_.empty(); }
  void flush() {
    if (isCleared_) store_.clear_->bind(1, number_).run();
    if (!fresh_.empty()) {
      store_.append_->bind(1, number_).bind(2, static_cast<std::int64_t>(written_)).bindBytes(3, fresh_).run();
    }
    isCleared_ = false;
    written_ += fresh_.size();
    fresh_.clear();
  }

 private:
  Store& store_;
  const int number_;
  std::size_t written_ = 0;
  std::string fresh_;
  bool isCleared_ = false;
};

void Store::Closer::operator()(sqlite3* database) const { sqlite3_close(database); }

Store::Store(const std::string& path, bool isAnew) : path_(path) {
  sqlite3* opened = nullptr;
  const int result = sqlite3_open(path.c_str(), &opened);
  database_.reset(opened);
  if (result != SQLITE_OK) fail("");
  make(isAnew);
  prepare();
}

Store::~Store() = default;

void Store::make(bool isAnew) {
  // One program has the file to itself. What is committed outlives the program's end, and the machine's own power cut
  // up to its last moments; waiting for the disk at each command would take a hundred times as long.
  run("PRAGMA locking_mode = EXCLUSIVE");
  run("PRAGMA journal_mode = WAL");
  run("PRAGMA synchronous = NORMAL");
  run("BEGIN EXCLUSIVE");
  const auto pragma = [this](const char* sql) {
    const Statement statement(*this, sql);
    return statement.step() ? statement.number(0) : 0;
  };
  const bool isEmpty = pragma("SELECT count(*) FROM sqlite_schema") == 0;
  if (!isEmpty && pragma("PRAGMA application_id") != kApplication) fail("not the state of a register");
  if (!isEmpty && pragma("PRAGMA user_version") != kFormat) fail("written by another version");
  if (isEmpty) {
    run(kTables);
    run("PRAGMA application_id = " + std::to_string(kApplication));
    run("PRAGMA user_version = " + std::to_string(kFormat));
  } else if (isAnew) {
    run("DELETE FROM memory; DELETE FROM journal");
  } else {
    check();
  }
  run("COMMIT");
}

void Store::check() {
  const Statement size(*this, "PRAGMA page_size");
  size.step();
  const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(pathOf(path_)));
  if (bytes % size.number(0) != 0) fail("damaged: cut off at byte " + std::to_string(bytes));
  const Statement rows(*this, "PRAGMA quick_check(1)");
  const std::string found = rows.step() ? rows.bytes(0) : "";
  if (found != "ok") fail("damaged: " + found.substr(0, found.find('\n')));
}

void Store::prepare() {
  const auto statement = [this](const char* sql) { return std::make_unique<Statement>(*this, sql); };
  put_ = statement("INSERT INTO memory VALUES (?, ?) ON CONFLICT (name) DO UPDATE SET value = excluded.value");
  erase_ = statement("DELETE FROM memory WHERE name = ?");
  append_ = statement("INSERT INTO journal VALUES (?, ?, ?)");
  clear_ = statement("DELETE FROM journal WHERE tape = ?");
  read_ = statement(
      "SELECT start, bytes FROM journal WHERE tape = ?1 AND start < ?3 AND start >= coalesce("
      "(SELECT max(start) FROM journal WHERE tape = ?1 AND start <= ?2), 0) ORDER BY start");
}

Store::Values Store::values() {
  Values values;
  const Statement rows(*this, "SELECT name, value FROM memory");
  while (rows.step()) {
    const int type = sqlite3_column_type(rows.handle, 1);
    if (type != SQLITE_INTEGER && type != SQLITE_TEXT) fail(rows.bytes(0) + ": neither a number nor a text");
    values.emplace(rows.bytes(0), type == SQLITE_INTEGER ? Value(rows.number(1)) : Value(rows.bytes(1)));
  }
  return values;
}

void Store::begin() { run("BEGIN"); }

void Store::put(const std::string& name, const Value& value) {
  put_->bind(1, name);
  if (const auto* number = std::get_if<std::int64_t>(&value)) {
    put_->bind(2, *number);
  } else {
    put_->bind(2, std::string_view(std::get<std::string>(value)));
  }
  put_->run();
}

void Store::erase(const std::string& name) { erase_->bind(1, std::string_view(name)).run(); }

void Store::commit() { run("COMMIT"); }

std::unique_ptr<Tape> Store::tape(int number) {
  auto tape = std::make_unique<StoredTape>(*this, number);
  tapes_[number] = tape.get();
  return tape;
}

void Store::flush() {
  for (const auto& [number, tape] : tapes_) tape->flush();
}

bool Store::hasUnwritten() const {
  return std::any_of(tapes_.begin(), tapes_.end(), [](const auto& entry) { return entry.second->hasUnwritten(); });
}

void Store::run(const std::string& sql) {
  if (sqlite3_exec(database_.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) fail("");
}

void Store::fail(const std::string& what) const {
  const int code = sqlite3_errcode(database_.get());
  if (!what.empty()) throw StateError(path_ + ": " + what);
  if (code == SQLITE_BUSY) throw StateError(path_ + ": another program has it open");
  if (code == SQLITE_NOTADB) throw StateError(path_ + ": not the state of a register");
  throw StateError(path_ + ": " + sqlite3_errmsg(database_.get()));
}

}  // namespace mirvane::emulator
