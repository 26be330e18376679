#pragma once

#include "emulator/register.h"

// What the reports of the register look like on its paper.
namespace mirvane::emulator {

/// The day's totals by VAT category, kind of document, payment, department and category.
void printDayTotals(Paper& paper, const FiscalState& fiscal);
void printXReport(Register& machine);
/// The report that closes the day, kept for printing it once more.
void printZReport(Register& machine);
/// The latest Z report once more.
void printZReportCopy(Register& machine);

}  // namespace mirvane::emulator
