#pragma once

#include <deque>
#include <map>
#include <optional>
#include <string>

#include "emulator/receipt.h"
#include "emulator/result_code.h"

namespace mirvane::emulator {

/// The register's settings for a card terminal. Numbers are 0 to 32767, the port 1 to 65535.
struct CardTerminal {
  bool isEnabled = true;
  /// The other bits of the byte that enables the terminal.
  int middleware = 0;
  std::string ip;
  int port = 0;
  Text description;
  int variant = 0, timeout = 0;
  std::array<int, 4> bitmaps{};
  /// Identifiers and transaction of the middleware.
  std::string acquirer, middlewareTerminal, transaction;
  int registerIdFormat = 0;
};

/// By number, from 1.
using CardTerminals = std::map<int, CardTerminal>;
constexpr int kMostTerminals = 20;

/// The identifier that the terminal gives itself.
std::string terminalIdentifier(int number);

/// Card payments, one at a time: the one at its terminal, and how it ended.
class CardPayments {
 public:
  struct Options {
    /// How long a terminal takes, in seconds.
    double seconds = 2;
    /// Outcomes of the next payments in turn, and of all others: kOk or a code that refuses.
    std::deque<Code> next;
    Code otherwise = Code::kOk;
    /// Whether the terminal decides by itself.
    bool answers = true;
  };
  Options options;

  /// Gives `payment` to its terminal. `now` is in seconds from any fixed moment.
  void begin(const Payment& payment, double now);
  bool isUnderWay() const { return payment_.has_value(); }
  /// The payment at its terminal.
  const std::optional<Payment>& underWay() const { return payment_; }
  /// Makes the terminal decide now: kOk, or a code that refuses.
  void decide(Code outcome) { decision_ = outcome; }
  /// The payment to book, once its terminal has approved it.
  std::optional<Payment> takeApproved(double now);

  /// Why the latest payment failed, reported once; otherwise kOk.
  Code takeFailure();
  void forgetFailure() { failure_ = Code::kOk; }

  /// Passes everything that survives a power cut to `visit(name, member)`. When the power returns, the terminal has
  /// decided.
  template <class Visitor>
  void visitMemory(Visitor&& visit) {
    visit("payment", payment_);
    visit("approvals", approvals_);
    visit("failure", failure_);
  }

 private:
  std::optional<Payment> payment_;
  double end_ = 0;
  std::optional<Code> decision_;
  int approvals_ = 0;
  Code failure_ = Code::kOk;
};

}  // namespace mirvane::emulator
