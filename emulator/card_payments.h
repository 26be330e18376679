#pragma once

#include <deque>
#include <map>
#include <optional>
#include <string>

#include "emulator/receipt.h"
#include "emulator/result_code.h"

namespace mirvane::emulator {

/// A card terminal as the register keeps it. The numbers are 0 to 32767, the port 1 to 65535.
struct CardTerminal {
  bool isEnabled = true;
  /// The other bits of the byte that enables it.
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

/// The identifier that a terminal gives itself.
std::string terminalIdentifier(int number);

/// Card payments, one at a time: what waits for the terminal, and how it ended.
class CardPayments {
 public:
  struct Options {
    /// How long a terminal takes.
    double seconds = 2;
    /// How the next payments end, one after the other, and how all others do: kOk or a code that refuses.
    std::deque<Code> next;
    Code otherwise = Code::kOk;
    /// Whether the terminal comes to a decision by itself.
    bool answers = true;
  };
  Options options;

  /// Hands `payment` to its terminal. `now` is in seconds, from any fixed moment.
  void begin(const Payment& payment, double now);
  bool isUnderWay() const { return payment_.has_value(); }
  /// What the terminal has now.
  const std::optional<Payment>& underWay() const { return payment_; }
  /// Has the terminal decide about what it has, now: kOk, or a code that refuses.
  void decide(Code outcome) { decision_ = outcome; }
  /// The payment to book, once its terminal has approved it.
  std::optional<Payment> takeApproved(double now);

  /// Why the latest payment failed, told once; kOk otherwise.
  Code takeFailure();
  void forgetFailure() { failure_ = Code::kOk; }

  /// Hands all that outlives a power cut to `visit(name, member)`. A terminal has decided when the power is back.
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
