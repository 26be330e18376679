#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "emulator/card_payments.h"
#include "emulator/receipt.h"
#include "emulator/roll.h"
#include "emulator/settings.h"

namespace mirvane::emulator {

/// A line of the receipt's header or footer; sizes 3 and 4 print in double width.
struct PrintedLine {
  Text text;
  int size = 1;
};

/// A department or a category, with today's sales.
struct SalesGroup {
  Text description;
  Cents amount = 0;
  int count = 0;
};

struct Department : SalesGroup {
  int category = 1;
};

/// The group with `number`, counted from 1; null if there is none.
template <class Group>
Group* groupAt(std::vector<Group>& groups, int number) {
  return number >= 1 && number <= std::ssize(groups) ? &groups[static_cast<std::size_t>(number) - 1] : nullptr;
}

/// The day's totals. VAT is calculated per receipt and category, and the day's VAT is the sum of its receipts', so that
/// a report agrees to the cent with its receipts.
struct DayTotals {
  VatSums gross{}, vat{};
  Cents voids = 0, refunds = 0, cancelled = 0, discounts = 0, markUps = 0;
  /// Cash, cards, cheques, without the change.
  std::array<Cents, 3> payments{};
  Cents cashIn = 0, cashOut = 0;
  int receipts = 0, cashDocuments = 0;

  /// The day's cash in the drawer.
  Cents cash() const { return payments[0] + cashIn - cashOut; }
};

/// Money put into or taken out of the drawer; booked when the document is closed.
struct CashDocument {
  bool isIn;
  Cents amount;
};

struct Limits {
  Cents receipt = 999'999'99;
  Cents day = 99'999'999'99;
};

/// Everything that the register remembers.
struct FiscalState {
  FiscalState();

  std::string serialNumber = "MVE25000017";
  std::array<PrintedLine, 5> header;
  std::array<PrintedLine, 3> footer;
  /// Replaces the footer of the open or the next receipt.
  std::optional<std::array<Text, 3>> nextFooter;
  /// Of the business; printed below the header.
  std::string vatNumber = "000000000";
  Settings settings;
  ServerSettings server;
  CardTerminals cardTerminals{{1, {true, 0, "192.168.1.50", 4000, u"ΤΕΡΜΑΤΙΚΟ", 0, 60, {}, "", "", "", 0}}};
  /// Categories A to E, in hundredths of a percent.
  VatRates vatRates{2400, 1300, 600, 3600, 0};
  /// Number 1 is at index 0.
  std::vector<Department> departments;
  std::vector<SalesGroup> categories;
  Limits limits;

  /// Number of days closed so far; receipts carry the number of the next closure.
  int closures = 0;
  /// Gross sales of all closed days.
  Cents grandTotal = 0;
  /// The latest closure's report, as printed.
  std::vector<PaperLine> lastReport;
  bool isDayOpen = false;
  /// When the open day started, in minutes of the calendar.
  std::int64_t dayOpened = 0;
  DayTotals day;
  /// The number of the latest receipt, given when it is opened; restarts every day. A cancelled receipt keeps its
  /// number.
  int lastReceiptNumber = 0;
  std::optional<Receipt> receipt;
  std::optional<CashDocument> cashDocument;

  /// Books the open receipt, which is fully paid, and closes it.
  void closeReceipt();
  void cancelReceipt();
  void closeCashDocument();
  /// Starts a new day.
  void closeDay();
  /// Why nothing can be done that requires the document to be finished; kOk if none is open.
  Code documentProblem() const;
  /// Why nothing can be changed that applies to a whole day; kOk between days.
  Code dayProblem() const;
  /// The amount that receipts may still sell today.
  Cents dayRest() const { return limits.day - sumOf(day.gross); }
  /// The fiscal status byte.
  std::uint8_t status() const;

 private:
  void book(const Item& item, Cents amount, int count);
  void endReceipt();
};

/// Whether `text` is 1 to 20 letters and digits: it becomes part of file names.
bool isSerialNumber(std::string_view text);

}  // namespace mirvane::emulator
