#include "emulator/command.h"
#include "emulator/receipt_printer.h"
#include "emulator/report_printer.h"
#include "text/code_page.h"

namespace mirvane::emulator {
namespace {

Text closureNumber(const FiscalState& fiscal) { return paddedNumber(fiscal.closures + 1, 4); }

std::string journalName(const FiscalState& fiscal) { return fiscal.serialNumber + toCodePage(closureNumber(fiscal)); }

std::string summary(const FiscalState& fiscal) {
  std::string bytes;
  Paper sheet([&bytes](TextView line) { Journal::appendLine(bytes, line); });
  sheet.pair(fromCodePage(fiscal.serialNumber), u"Ζ " + closureNumber(fiscal));
  printDayTotals(sheet, fiscal);
  return bytes;
}

Code printX(Register& machine, const Fields&, ReplyWriter&) {
  if (machine.journal.isClosing()) return Code::kClosing;
  const Code code = machine.fiscal.documentProblem();
  if (code == Code::kOk) printXReport(machine);
  return code;
}

/// Each document is in the journal as a whole, so nothing is prepared while one is open.
Code prepareClosing(Register& machine, const Fields&, ReplyWriter& reply) {
  const FiscalState& fiscal = machine.fiscal;
  Journal& journal = machine.journal;
  Code code = fiscal.documentProblem();
  if (code == Code::kOk) code = machine.machineProblem();
  if (code != Code::kOk) return code;
  if (journal.isClosing()) {
    journal.rewind();
  } else {
    if (!journal.advancePreparation()) return Code::kPreparing;
    if (!journal.prepareClosing(journalName(fiscal), summary(fiscal))) return Code::kJournalWrite;
  }
  reply.text(closureNumber(fiscal)).text(journal.signature());
  return Code::kOk;
}

Code prepareOpenDay(Register& machine, const Fields&, ReplyWriter& reply) {
  const FiscalState& fiscal = machine.fiscal;
  const Code code = fiscal.documentProblem();
  if (code != Code::kOk) return code;
  if (machine.journal.isClosing()) {
    machine.journal.rewind();
  } else {
    machine.journal.prepare(journalName(fiscal), summary(fiscal));
  }
  reply.whole(fiscal.closures);
  return Code::kOk;
}

Code tellJournalName(Register& machine, const Fields&, ReplyWriter& reply) {
  reply.text(journalName(machine.fiscal));
  return Code::kOk;
}

Code readJournal(Register& machine, const Fields&, ReplyWriter& reply) {
  if (!machine.journal.isPrepared()) return Code::kJournalNotStarted;
  if (const auto step = machine.journal.read()) {
    reply.text(std::string(1, static_cast<char>(step->state))).text(step->piece).text(step->fileName);
  }
  return Code::kOk;
}

Code closeDay(Register& machine, const Fields& fields, ReplyWriter&) {
  if (fields.bytes(1) != "2") return Code::kFieldRange;
  if (!machine.journal.isTransferred()) return Code::kJournalNotTransferred;
  const Code code = machine.machineProblem();
  if (code != Code::kOk) return code;
  printZReport(machine);
  machine.fiscal.closeDay();
  machine.journal.startAnew();
  return Code::kOk;
}

Code printLastZ(Register& machine, const Fields&, ReplyWriter&) {
  const Code code = machine.fiscal.documentProblem();
  if (code != Code::kOk) return code;
  if (machine.journal.isClosing() && !machine.journal.isTransferred()) return Code::kJournalNotTransferred;
  if (machine.fiscal.closures == 0) return Code::kNoClosure;
  printZReportCopy(machine);
  return Code::kOk;
}

}  // namespace

const std::vector<CommandRow>& reportCommands() {
  using namespace field;
  static const std::vector<CommandRow> kCommands = {
      {"x", "1", "X report", {selector()}, true, printX},
      {"x", "2", "Z report", {selector(), selector()}, true, closeDay, {}, true},
      {"x", "9", "Z report again", {selector()}, true, printLastZ},
      {"A", "", "end the day's sales", {}, false, prepareClosing, {"closure", "signature"}},
      {"#", "", "journal so far", {}, false, prepareOpenDay, {"last closure"}},
      {")", "", "journal name", {}, false, tellJournalName, {"file name"}},
      {"Q", "", "read journal", {}, false, readJournal, {"state", "piece", "file name"}},
  };
  return kCommands;
}

}  // namespace mirvane::emulator
