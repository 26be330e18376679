#pragma once

#include <functional>
#include <optional>

#include "embedding/component.h"
#include "embedding/till.h"
#include "service/board.h"

namespace mirvane::service {

/// A snapshot of the register. Two equal ones in a row are trusted.
struct Picture {
  /// The day's number: that of the next closing.
  int day = 0;
  /// Receipts and cash documents closed today, and the latest receipt's number.
  int receipts = 0, cashDocuments = 0, number = 0;
  enum class Open { kNothing, kReceipt, kCashDocument };
  Open open = Open::kNothing;
  /// For the open receipt.
  Cents total = 0, remaining = 0;

  bool operator==(const Picture&) const = default;
  http::Json json() const;
  static std::optional<Picture> from(const http::Json& json);
};

/// One register, driven through the component. What the component shows an operator goes to the board.
class Register {
 public:
  /// `keepFile` receives the journal's files, by name. `machine` is the environment; its screen is not used, and its
  /// files only for the flight record, in `recordFolder` unless that is empty.
  Register(platform::Platform& machine, Board& board, Text port, TextView recordFolder,
           std::function<bool(const std::string& name, std::string_view bytes)> keepFile);
  Register(const Register&) = delete;
  Register& operator=(const Register&) = delete;
  ~Register();

  /// Connects if necessary, and reads the register's identity and abilities; false if it does not answer.
  bool connect();
  const std::string& serialNumber() const { return serialNumber_; }

  /// Calls a member; true if Result is 0.
  template <class... A>
  bool call(std::string_view member, A&&... arguments) {
    return measured([&] { return till_.call(member, std::forward<A>(arguments)...); });
  }
  bool send(TextView command) { return call("SendCommand_", Text(command)); }
  /// Sells, voids, refunds, adjusts or prints a comment.
  bool ring(const Line& line);
  /// Pays, and closes the receipt if this payment `isLast`.
  bool pay(const Payment& payment, Cents amount, bool isLast);

  /// Result of the last call.
  std::int16_t result() const { return till_.Result; }
  std::string text() const { return toUtf8(till_.Exresult); }
  /// The last call succeeded, and the register itself confirmed it.
  bool isCertain() const;
  /// According to the register's last answer.
  bool isDocumentOpen();
  /// The last call failed because of something that passes or that a person can fix, not because of the call itself.
  bool isInTheWay() const;

  /// Nothing if the register does not give two equal snapshots in a row.
  std::optional<Picture> look();
  /// A single snapshot, to compare with an earlier one. Returns nothing as soon as it `isEnough`.
  std::optional<Picture> lookOnce(const std::function<bool()>& isEnough = [] { return false; });
  /// The open receipt's number and total.
  std::optional<std::pair<int, Cents>> openReceipt();

  /// Reports what the last call failed on, and waits a second.
  void waitAWhile();
  void pass(std::uint32_t milliseconds);
  /// Reports what the worker waits for, if that is not the last call's failure.
  void waitFor(Wait wait);
  void goOn();
  platform::Clock& clock() { return machine_.clock; }

 private:
  class Screen;
  class Files;

  bool measured(const std::function<bool()>& call);
  /// What does not change while the register is connected; also trusted when read twice.
  struct Nature {
    std::string serialNumber;
    Abilities abilities;
    bool operator==(const Nature&) const = default;
  };
  std::optional<Nature> readNature();

  platform::Platform& machine_;
  Board& board_;
  const Text port_;
  std::string serialNumber_;
  bool isConnected_ = false;
  std::unique_ptr<Screen> screen_;
  std::unique_ptr<Files> files_;
  platform::Platform platform_;
  embedding::Component component_;
  embedding::Till till_;
};

}  // namespace mirvane::service
