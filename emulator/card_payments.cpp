#include "emulator/card_payments.h"

#include <utility>

namespace mirvane::emulator {

std::string terminalIdentifier(int number) {
  constexpr int kFirst = 73'100'000;
  return std::to_string(kFirst + number);
}

void CardPayments::begin(const Payment& payment, double now) {
  payment_ = payment;
  end_ = now + options.seconds;
  decision_.reset();
  forgetFailure();
}

std::optional<Payment> CardPayments::takeApproved(double now) {
  const bool isDecided = decision_ || (options.answers && now >= end_);
  if (!payment_ || !isDecided) return std::nullopt;
  auto payment = std::exchange(payment_, std::nullopt);
  failure_ = decision_.value_or(options.otherwise);
  if (!decision_ && !options.next.empty()) {
    failure_ = options.next.front();
    options.next.pop_front();
  }
  if (failure_ != Code::kOk) return std::nullopt;
  payment->approval = ++approvals_;
  return payment;
}

Code CardPayments::takeFailure() { return std::exchange(failure_, Code::kOk); }

}  // namespace mirvane::emulator
