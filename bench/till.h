#pragma once

#include <cstddef>
#include <string>

#include "embedding/till.h"
#include "text/code_page.h"

namespace mirvane::bench {

[[noreturn]] void fail(const std::string& what);

/// An object of the component: natively its own, on Windows one of the registered DLL.
ObjectPtr createPublic(std::string_view className);
/// Makes the folder of the flight record, which the next connection finds.
void makeRecordFolder();
/// What this process holds in memory, in bytes.
std::size_t memory();
/// Size of the component's file; 0 where it is part of the program.
std::size_t componentSize();

/// The command that `sell` makes.
inline constexpr TextView kItem = u"3/S//Καφές///1.000/2.50/1/24.00/1/";

/// A program that drives a register, late bound. Every operation ends the benchmark with a message when it fails.
class Till {
 public:
  void connect(const Text& port) { operate(0, "Connect_", port); }
  void disconnect() { operate(1, "DisConnect_", Text()); }
  /// Sends a command text and returns the reply.
  Text send(const Text& command) {
    operate(0, "SendCommand_", command);
    return till_.Exresult;
  }
  /// Sells kItem.
  void sell() { operate(0, "ItemSale", Text(u"Καφές"), 1.0, 2.5, 24.0, std::int16_t{1}); }
  /// Pays that much in cash, which closes a receipt that is wholly paid.
  void pay(double amount) {
    operate(0, "Payment", std::int16_t{1}, Text(u"ΜΕΤΡΗΤΑ"), amount, std::int16_t{0}, std::int16_t{0});
  }
  /// A call that sends nothing.
  void callNothing() { till_.read("getFiscalType"); }
  void setTrace(bool active) { till_.read(active ? "activateDebug" : "DeactivateDebug"); }
  /// Takes the journal of the open day into the files below c:\bbox, with its window.
  void readJournal() {
    Text text;
    if (convertTo<std::int32_t>(journal_->call("eMakeZreport", text, false)) != 0) fail(toUtf8(text));
  }

 private:
  template <class... A>
  void operate(std::int16_t success, std::string_view member, A&&... arguments) {
    till_.call(member, std::forward<A>(arguments)...);
    if (till_.Result == success) return;
    fail(std::string(member) + ": " + std::to_string(till_.Result) + " " + toUtf8(till_.Exresult));
  }

  embedding::Till till_{createPublic("fiscalTrevikModule")};
  ObjectPtr journal_ = createPublic("FiscalJournal");
};

}  // namespace mirvane::bench
