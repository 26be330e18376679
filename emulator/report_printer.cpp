#include "emulator/report_printer.h"

#include "emulator/receipt_printer.h"
#include "text/code_page.h"

namespace mirvane::emulator {
namespace {

void amountLine(Paper& paper, TextView name, Cents amount) { paper.pair(name, printedAmount(amount)); }

void countLine(Paper& paper, TextView name, int count) { paper.pair(name, paddedNumber(count, 1)); }

/// Those that sold something today.
template <class Group>
void printGroups(Paper& paper, TextView title, const std::vector<Group>& groups) {
  paper.line(title);
  for (std::size_t i = 0; i < groups.size(); ++i) {
    if (groups[i].amount == 0 && groups[i].count == 0) continue;
    paper.pair(u" " + paddedNumber(static_cast<int>(i) + 1, 2) + u" " + groups[i].description,
               paddedNumber(groups[i].count, 1) + u" x  " + printedAmount(groups[i].amount));
  }
  paper.rule();
}

void printLines(Register& machine, const std::vector<PaperLine>& lines) {
  for (const PaperLine& line : lines) machine.paper.line(line, line.size);
}

void printReport(Paper& paper, Register& machine, TextView title) {
  const platform::LocalTime now = machine.clock();
  printHeader(paper, machine.fiscal);
  paper.centred(title);
  paper.pair(printedDate(now) + u" " + printedTime(now), fromCodePage(machine.fiscal.serialNumber));
  paper.rule();
  printDayTotals(paper, machine.fiscal);
  paper.centred(Text(title).append(u" - ΛΗΞΗ"));
  paper.feed(2);
}

}  // namespace

void printDayTotals(Paper& paper, const FiscalState& fiscal) {
  const DayTotals& day = fiscal.day;
  for (std::size_t i = 0; i < kVatCategories; ++i) {
    paper.pair(printedVat(fiscal, i), printedAmount(day.gross[i]));
    paper.pair(u"",
               u"ΚΑΘΑΡΗ ΑΞΙΑ " + printedAmount(day.gross[i] - day.vat[i]) + u"  ΦΟΡΟΣ " + printedAmount(day.vat[i]));
  }
  amountLine(paper, u"ΣΥΝΟΛΟ", sumOf(day.gross));
  amountLine(paper, u"ΣΥΝΟΛΟ ΦΠΑ", sumOf(day.vat));
  paper.rule();
  countLine(paper, u"ΝΟΜΙΜΕΣ ΑΠΟΔΕΙΞΕΙΣ", day.receipts);
  countLine(paper, u"ΜΗ ΦΟΡΟΛΟΓΙΚΑ ΠΑΡΑΣΤΑΤΙΚΑ", day.cashDocuments);
  amountLine(paper, u"ΑΛΛΑΓΕΣ", day.voids);
  amountLine(paper, u"ΕΠΙΣΤΡΟΦΕΣ", day.refunds);
  amountLine(paper, u"ΑΚΥΡΩΜΕΝΕΣ ΑΠΟΔΕΙΞΕΙΣ", day.cancelled);
  amountLine(paper, u"ΕΚΠΤΩΣΕΙΣ", day.discounts);
  amountLine(paper, u"ΑΥΞΗΣΕΙΣ", day.markUps);
  paper.rule();
  amountLine(paper, u"ΜΕΤΡΗΤΑ", day.payments[0]);
  amountLine(paper, u"ΚΑΡΤΕΣ", day.payments[1]);
  amountLine(paper, u"ΕΠΙΤΑΓΕΣ", day.payments[2]);
  amountLine(paper, u"ΕΙΣΠΡΑΞΕΙΣ", day.cashIn);
  amountLine(paper, u"ΠΛΗΡΩΜΕΣ", day.cashOut);
  paper.rule();
  printGroups(paper, u"ΤΜΗΜΑΤΑ", fiscal.departments);
  printGroups(paper, u"ΚΑΤΗΓΟΡΙΕΣ", fiscal.categories);
  amountLine(paper, u"ΓΕΝΙΚΟ ΣΥΝΟΛΟ", fiscal.grandTotal + sumOf(day.gross));
}

void printXReport(Register& machine) {
  beginDocument(machine, Document::Kind::kReport);
  printReport(machine.paper, machine, u"ΑΝΑΦΟΡΑ Χ");
  machine.roll.end(Document::State::kClosed);
}

void printZReport(Register& machine) {
  std::vector<PaperLine> lines;
  Paper sheet([&lines](const PaperLine& line) { lines.push_back(line); });
  printReport(sheet, machine, u"ΔΕΛΤΙΟ Ζ " + paddedNumber(machine.fiscal.closures + 1, 4));
  beginDocument(machine, Document::Kind::kReport);
  printLines(machine, lines);
  machine.roll.end(Document::State::kClosed);
  machine.fiscal.lastReport = std::move(lines);
}

void printZReportCopy(Register& machine) {
  beginDocument(machine, Document::Kind::kReport);
  machine.paper.centred(u"ΑΝΤΙΓΡΑΦΟ");
  printLines(machine, machine.fiscal.lastReport);
  machine.roll.end(Document::State::kClosed);
}

}  // namespace mirvane::emulator
