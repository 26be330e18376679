#pragma once

#include "emulator/register.h"

// What the documents of the register look like on its paper.
namespace mirvane::emulator {

/// Numbers as they stand on paper: with a decimal comma.
Text printedAmount(Cents value);
/// `value` with leading zeros to at least `width` digits.
Text paddedNumber(int value, std::size_t width);
Text printedDate(const platform::LocalTime& time);
Text printedTime(const platform::LocalTime& time);
/// A VAT category and its rate.
Text printedVat(const FiscalState& fiscal, std::size_t category);

/// What is printed from now on is a document of its own.
void beginDocument(Register& machine, Document::Kind kind);
/// The header with the VAT number of the business.
void printHeader(Paper& paper, const FiscalState& fiscal);
void printReceiptStart(Register& machine);
void printItem(Register& machine, const Item& item);
/// The latest adjustment of the open receipt; `before` is the total that it changed.
void printAdjustment(Register& machine, Cents before);
/// The latest payment of the open receipt; the total before the first one.
void printPayment(Register& machine);
void printReceiptEnd(Register& machine);
/// Has the journal sign the open receipt, which has been printed.
void signReceipt(Register& machine);
void printReceiptCancelled(Register& machine);
void printCashDocument(Register& machine, TextView description);
void printCashDocumentEnd(Register& machine);

}  // namespace mirvane::emulator
