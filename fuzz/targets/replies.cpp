// Replies of any kind, into every member that talks to the device. An input: a byte of how (1 network, 2 framed,
// 4 suppressed, 8 the number 2), a byte that picks the member, then the replies, one a line.

#include <algorithm>

#include "facade/fiscal_trevik_module.h"
#include "fuzz/machine.h"

namespace mirvane::fuzz {
namespace {

std::vector<const Member*> operations() {
  std::vector<const Member*> all;
  for (const Member& member : fiscalTrevikModule::describe().members()) {
    const auto isResult = [](const Parameter& parameter) { return parameter.name == "Result"; };
    const bool isOperation = std::ranges::any_of(member.parameters, isResult);
    if (isOperation && member.name != "Connect_" && member.name != "DisConnect_") all.push_back(&member);
  }
  return all;
}

bool onlyReads(std::string_view name) {
  return name.starts_with("get") || name == "transactionTotals" || name == "settingsRead" || name == "eftRead";
}

/// Looks on at a payment whose device answers with whole replies.
class Cashier {
 public:
  void see(const std::string& command, const Reply& reply) {
    const bool isQuestion = command.starts_with("5/99/");
    if (command == "O/1/") require(remaining_ && *remaining_ <= 0, "closed a receipt that is not known to be paid");
    if (command.starts_with("5/") && !isQuestion) {
      require(!wasSent_ || mayBeSentAgain(reply_), "a payment was sent twice");
      require(!sawCardPayment_, "a payment was sent again after a card payment");
      wasSent_ = true;
      reply_ = reply.result;
    }
    if (wasSent_ && reply.is(DeviceCode::kCardUnderWay) && hasStatus(reply.raw())) sawCardPayment_ = true;
    if (isQuestion) {
      remaining_.reset();
      if (reply.succeeded() && hasStatus(reply.raw()) && reply.count() > 0) remaining_ = reply.number(0);
    }
  }

 private:
  bool wasSent_ = false, sawCardPayment_ = false;
  std::int16_t reply_ = 0;
  std::optional<double> remaining_;
};

void run(Input input) {
  static const std::vector<const Member*> kOperations = operations();
  const unsigned how = input.byte();
  const Member& member = *kOperations[input.byte() % kOperations.size()];
  Machine machine;
  const ObjectPtr till = machine.connected((how & 1U) != 0);
  Variables variables(member, (how & 8U) != 0 ? 2 : 1, (how & 4U) != 0);
  const auto before = variables.outputs();
  Cashier cashier;
  machine.script(input, (how & 2U) != 0, [&](const std::string& command, const Reply* reply) {
    if (reply != nullptr && (how & 2U) != 0 && member.name == "Payment") cashier.see(command, *reply);
  });
  if (!passes([&] { till->invoke(member.name, Access::call, variables.references()); })) return;
  const auto result = std::get<std::int16_t>(variables["Result"]);
  require((result >= 0 && result <= 255) || result == link_result::kNoAnswer || result == link_result::kNotNow,
          "Result is a code of the device's or of the link's");
  require(result == 0 || !onlyReads(member.name) || variables.outputs() == before,
          "a read that failed leaves the caller's variables as they are");
}

}  // namespace
}  // namespace mirvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  mirvane::fuzz::run({data, size});
  return 0;
}
