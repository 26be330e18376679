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

void printHeader(Register& machine);
void printReceiptStart(Register& machine);
void printItem(Register& machine, const Item& item);
/// The latest payment of the open receipt; the total before the first one.
void printPayment(Register& machine);
void printReceiptEnd(Register& machine);
void printReceiptCancelled(Register& machine);
void printCashDocument(Register& machine, TextView description);
void printCashDocumentEnd(Register& machine);

}  // namespace mirvane::emulator
