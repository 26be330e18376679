#include "emulator/command.h"
#include "emulator/receipt_printer.h"

namespace mirvane::emulator {
namespace {

Code tellVersion(Register&, const Fields&, ReplyWriter& reply) {
  reply.text("MIRVANE EMULATOR").text("2.0").text("1");
  return Code::kOk;
}

Code tellStatus(Register& machine, const Fields&, ReplyWriter&) { return machine.cards.takeFailure(); }

Code tellReceiptTotals(Register& machine, const Fields&, ReplyWriter& reply) {
  const auto& receipt = machine.fiscal.receipt;
  const VatSums sums = receipt ? receipt->vatSums() : VatSums{};
  for (const Cents sum : sums) reply.amount(sum);
  reply.whole(machine.fiscal.lastReceiptNumber).amount(sumOf(sums));
  return Code::kOk;
}

Code tellSerialNumber(Register& machine, const Fields&, ReplyWriter& reply) {
  reply.text(machine.fiscal.serialNumber);
  return Code::kOk;
}

Code tellTime(Register& machine, const Fields&, ReplyWriter& reply) {
  const platform::LocalTime now = machine.clock();
  reply.text(printedDate(now)).text(printedTime(now));
  return Code::kOk;
}

Code tellDepartment(Register& machine, const Fields& fields, ReplyWriter& reply) {
  const Department* department = groupAt(machine.fiscal.departments, fields.whole(0));
  if (!department) return Code::kDepartment;
  reply.text(department->description).whole(fields.whole(0)).whole(department->category);
  reply.amount(department->amount).whole(department->count);
  return Code::kOk;
}

Code tellCategory(Register& machine, const Fields& fields, ReplyWriter& reply) {
  const SalesGroup* category = groupAt(machine.fiscal.categories, fields.whole(0));
  if (!category) return Code::kCategory;
  reply.text(category->description).amount(category->amount).whole(category->count);
  return Code::kOk;
}

Code tellDayTotals(Register& machine, const Fields&, ReplyWriter& reply) {
  const DayTotals& day = machine.fiscal.day;
  for (const Cents gross : day.gross) reply.amount(gross);
  reply.amount(sumOf(day.gross)).whole(day.receipts).whole(day.cashDocuments);
  reply.amount(day.voids).amount(day.refunds).amount(day.cancelled);
  for (const Cents payment : day.payments) reply.amount(payment);
  reply.amount(day.discounts).amount(day.markUps);
  return Code::kOk;
}

}  // namespace

const std::vector<CommandRow>& readCommands() {
  using namespace field;
  static const std::vector<Name> kTotals = {"sales A",  "sales B",        "sales C",   "sales D", "sales E",   "sales",
                                            "receipts", "cash documents", "voids",     "refunds", "cancelled", "cash",
                                            "cards",    "cheques",        "discounts", "mark-ups"};
  static const std::vector<CommandRow> kCommands = {
      {"v", "", "version", {}, false, tellVersion, {"model", "version", "build"}},
      {"?", "", "status", {}, false, tellStatus},
      {"9",
       "",
       "open receipt",
       {},
       false,
       tellReceiptTotals,
       {"sales A", "sales B", "sales C", "sales D", "sales E", "receipt", "total"}},
      {"a", "", "serial number", {}, false, tellSerialNumber, {"serial number"}},
      {"t", "", "date and time", {}, false, tellTime, {"date", "time"}},
      {"0", "", "day totals", {}, false, tellDayTotals, kTotals},
      {"D",
       "",
       "read department",
       {whole("department", 3)},
       false,
       tellDepartment,
       {"description", "department", "category", "amount", "count"}},
      {"k", "", "read category", {whole("category", 3)}, false, tellCategory, {"description", "amount", "count"}},
  };
  return kCommands;
}

}  // namespace mirvane::emulator
