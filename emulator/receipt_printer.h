#pragma once

#include "emulator/register.h"

// The layout of the register's documents.
namespace mirvane::emulator {

/// Numbers as printed: with a decimal comma.
Text printedAmount(Cents value);
/// `value` with leading zeros to at least `width` digits.
Text paddedNumber(int value, std::size_t width);
Text printedDate(const platform::LocalTime& time);
Text printedTime(const platform::LocalTime& time);
/// A VAT category and its rate.
Text printedVat(const FiscalState& fiscal, std::size_t category);

/// Starts a new document for whatever is printed next.
void beginDocument(Register& machine, Document::Kind kind);
/// The header with the VAT number of the business.
void printHeader(Paper& paper, const FiscalState& fiscal);
void printReceiptStart(Register& machine);
void printItem(Register& machine, const Item& item);
/// The latest adjustment of the open receipt; `before` is the total before it.
void printAdjustment(Register& machine, Cents before);
/// The latest payment of the open receipt; before the first one also the total.
void printPayment(Register& machine);
void printReceiptEnd(Register& machine);
/// Makes the journal sign the open receipt, which has been printed.
void signReceipt(Register& machine);
void printReceiptCancelled(Register& machine);
void printCashDocument(Register& machine, TextView description);
void printCashDocumentEnd(Register& machine);

}  // namespace mirvane::emulator
