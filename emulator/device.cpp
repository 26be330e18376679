#include "emulator/device.h"

#include <algorithm>
#include <chrono>
#include <ctime>

#include "emulator/command.h"
#include "emulator/receipt_printer.h"

namespace mirvane::emulator {
namespace {

std::string hex(std::uint8_t value) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  return {kDigits[value >> 4], kDigits[value & 0x0F]};
}

bool isControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }

Code printerProblem(std::uint8_t status) {
  if (status & kPrinterSilent) return Code::kPrinterTimeout;
  if (status & kPrinterOffline) return Code::kPrinterOffline;
  if (status & kPrinterError) return Code::kPrinterHead;
  return status & kPrinterPaperEnd ? Code::kPaperEnd : Code::kOk;
}

/// What does not depend on how a card payment ends: a till that starts up asks it.
bool isAnsweredMeanwhile(std::string_view code) { return code == "v" || code == "a" || code == "t"; }

Code run(Register& machine, std::string_view command, std::uint8_t printerStatus, ReplyWriter& reply) {
  if (std::any_of(command.begin(), command.end(), isControl)) return Code::kFieldRange;
  if (command.find('/') == std::string_view::npos) return Code::kUnknownRequest;
  Fields fields(command);
  if (machine.cards.isUnderWay() && !isAnsweredMeanwhile(fields.code())) return Code::kCardUnderWay;
  Code code = Code::kOk;
  const CommandRow* row = findCommand(fields, code);
  if (!row) return code;
  code = fields.check(row->fields, row->endsOpen);
  if (code == Code::kOk && row->prints) code = printerProblem(printerStatus);
  if (code != Code::kOk) return code;
  code = row->run(machine, fields, reply);
  // A till that has continued no longer needs the reason.
  if (row->prints && code == Code::kOk) machine.cards.forgetFailure();
  return code;
}

}  // namespace

platform::LocalTime systemTime() {
  const std::time_t now = std::time(nullptr);
  const std::tm local = *std::localtime(&now);
  return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

double steadySeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

Device::Device(Paper::Sink paper, LocalClock clock, ElapsedClock elapsed)
    : machine_{{},
               Paper([this, sink = std::move(paper)](const PaperLine& line) {
                 machine_.journal.record(line);
                 machine_.roll.print(line);
                 if (sink) sink(line);
               }),
               std::move(clock),
               std::move(elapsed)} {}

std::string Device::execute(std::string_view command, std::uint8_t printerStatus) {
  settleCard();
  ReplyWriter reply;
  const Code code = run(machine_, command, printerStatus, reply);
  return refuse(code, printerStatus) + (code == Code::kOk ? reply.bytes() : "");
}

void Device::settleCard() {
  const auto payment = machine_.cards.takeApproved(machine_.elapsed());
  if (payment && machine_.fiscal.receipt->pay(*payment) == Code::kOk) printPayment(machine_);
}

void Device::restore(FiscalState fiscal, Journal::Memory journal, CardPayments cards) {
  cards.options = std::move(machine_.cards.options);
  machine_.fiscal = std::move(fiscal);
  machine_.journal.recall(std::move(journal));
  machine_.cards = std::move(cards);
  machine_.display = {};
  machine_.drawerOpenings = 0;
  machine_.roll.clear();
  if (machine_.fiscal.receipt) beginDocument(machine_, Document::Kind::kReceipt);
}

std::string Device::refuse(Code code, std::uint8_t printerStatus) const {
  return hex(static_cast<std::uint8_t>(code)) + "/" + hex(printerStatus) + "/" + hex(machine_.fiscal.status()) + "/";
}

}  // namespace mirvane::emulator
