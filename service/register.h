#pragma once

#include <functional>
#include <optional>

#include "embedding/component.h"
#include "embedding/till.h"
#include "service/board.h"

namespace mirvane::service {

/// The register as it stands. Two in a row that are equal are believed.
struct Picture {
  /// The day's number: of the closing to come.
  int day = 0;
  /// Receipts and cash documents that were closed today, and the latest receipt's number.
  int receipts = 0, cashDocuments = 0, number = 0;
  enum class Open { kNothing, kReceipt, kCashDocument };
  Open open = Open::kNothing;
  /// Of the open receipt.
  Cents total = 0, remaining = 0;

  bool operator==(const Picture&) const = default;
  http::Json json() const;
  static std::optional<Picture> from(const http::Json& json);
};

/// One register, asked and driven through the component; whatever the component shows an operator goes to the board.
class Register {
 public:
  /// `keepFile` takes the journal's files, by name. `machine` is what is below; its screen is not used, and its files
  /// only for the flight record, in `recordFolder` while that is there.
  Register(platform::Platform& machine, Board& board, Text port, TextView recordFolder,
           std::function<bool(const std::string& name, std::string_view bytes)> keepFile);
  Register(const Register&) = delete;
  Register& operator=(const Register&) = delete;
  ~Register();

  /// Connects where that is needed, and reads who it is and what it can. False when it does not answer.
  bool connect();
  const std::string& serialNumber() const { return serialNumber_; }

  /// One call of a member: true when it was told that it is done.
  template <class... A>
  bool call(std::string_view member, A&&... arguments) {
    return measured([&] { return till_.call(member, std::forward<A>(arguments)...); });
  }
  bool send(TextView command) { return call("SendCommand_", Text(command)); }
  /// Sells, voids, refunds, adjusts or prints.
  bool ring(const Line& line);
  /// Pays, and closes the receipt when that `isLast`.
  bool pay(const Payment& payment, Cents amount, bool isLast);

  /// Of the last call.
  std::int16_t result() const { return till_.Result; }
  std::string text() const { return toUtf8(till_.Exresult); }
  /// Done, and the register has said so itself.
  bool isCertain() const;
  /// As the register's last answer told it.
  bool isDocumentOpen();
  /// The last call failed on something that ends, or that somebody can mend; nothing can be said against the call.
  bool isInTheWay() const;

  /// Nothing when the register does not tell the same twice.
  std::optional<Picture> look();
  /// One alone, to be held against an earlier one. Nothing as soon as it `isEnough`, too.
  std::optional<Picture> lookOnce(const std::function<bool()>& isEnough = [] { return false; });
  /// The open receipt's number and total.
  std::optional<std::pair<int, Cents>> openReceipt();

  /// Tells what is in the way, by the last call, and lets a second pass.
  void waitAWhile();
  void pass(std::uint32_t milliseconds);
  /// What the worker waits for, which is not the last call's.
  void waitFor(Wait wait);
  void goOn();
  platform::Clock& clock() { return machine_.clock; }

 private:
  class Screen;
  class Files;

  bool measured(const std::function<bool()>& call);
  /// What does not change while it is connected; believed when it comes twice, too.
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
