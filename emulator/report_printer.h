#pragma once

#include "emulator/register.h"

// The layout of the register's reports.
namespace mirvane::emulator {

/// The day's totals by VAT category, kind of document, payment, department and category.
void printDayTotals(Paper& paper, const FiscalState& fiscal);
void printXReport(Register& machine);
/// The report that closes the day; kept for printing it again.
void printZReport(Register& machine);
/// Prints the latest Z report again.
void printZReportCopy(Register& machine);

}  // namespace mirvane::emulator
