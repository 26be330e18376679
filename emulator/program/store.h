#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>

#include "emulator/journal.h"

struct sqlite3;

namespace mirvane::emulator {

/// The state file cannot be written or is invalid. The text says why.
struct StateError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// A file of named values and the journal's tapes: a database. What is written between `begin` and `commit` is saved
/// completely or not at all, whenever the program ends. Everything throws StateError.
class Store {
 public:
  using Value = std::variant<std::int64_t, std::string>;
  using Values = std::map<std::string, Value, std::less<>>;

  /// Opens or creates the file `path`, and empties it if `isAnew`. Refuses a file that another program has open, and
  /// one that is damaged, with the place of the damage.
  Store(const std::string& path, bool isAnew);
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;
  ~Store();

  Values values();
  void begin();
  void put(const std::string& name, const Value& value);
  void erase(const std::string& name);
  void commit();
  /// The tape must not outlive the store or coexist with another one of the same number. Appended bytes are written
  /// with the next commit.
  std::unique_ptr<Tape> tape(int number);
  /// Writes what was appended to the tapes.
  void flush();
  bool hasUnwritten() const;

 private:
  class StoredTape;
  struct Statement;

  void run(const std::string& sql);
  void prepare();
  void make(bool isAnew);
  void check();
  [[noreturn]] void fail(const std::string& what) const;

  const std::string path_;
  struct Closer {
    void operator()(sqlite3* database) const;
  };
  std::unique_ptr<sqlite3, Closer> database_;
  std::unique_ptr<Statement> put_, erase_, append_, read_, clear_;
  std::map<int, StoredTape*> tapes_;
};

}  // namespace mirvane::emulator
