#include "emulator/command.h"
#include "emulator/receipt_printer.h"

namespace mirvane::emulator {
namespace {

Code tellVersion(Register&, const Fields&, ReplyFields& reply) {
  reply.text("MIRVANE EMULATOR").text("2.0").text("1");
  return Code::kOk;
}

Code tellStatus(Register&, const Fields&, ReplyFields&) { return Code::kOk; }

Code tellReceiptTotals(Register& machine, const Fields&, ReplyFields& reply) {
  const auto& receipt = machine.fiscal.receipt;
  const VatSums sums = receipt ? receipt->vatSums() : VatSums{};
  for (const Cents sum : sums) reply.amount(sum);
  reply.whole(machine.fiscal.lastReceiptNumber).amount(sumOf(sums));
  return Code::kOk;
}

Code tellSerialNumber(Register& machine, const Fields&, ReplyFields& reply) {
  reply.text(machine.fiscal.serialNumber);
  return Code::kOk;
}

Code tellTime(Register& machine, const Fields&, ReplyFields& reply) {
  const platform::LocalTime now = machine.clock();
  reply.text(toCodePage(printedDate(now))).text(toCodePage(printedTime(now)));
  return Code::kOk;
}

}  // namespace

const std::vector<Command>& readCommands() {
  static const std::vector<Command> kCommands = {
      {"v", "", {}, false, tellVersion},      {"?", "", {}, false, tellStatus}, {"9", "", {}, false, tellReceiptTotals},
      {"a", "", {}, false, tellSerialNumber}, {"t", "", {}, false, tellTime},
  };
  return kCommands;
}

}  // namespace mirvane::emulator
