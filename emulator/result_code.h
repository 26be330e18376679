#pragma once

#include <cstdint>

namespace mirvane::emulator {

/// The outcome of a command, as the first two characters of the reply carry it (in hexadecimal).
enum class Code : std::uint8_t {
  kOk = 0,
  kFieldCount = 1,
  kFieldTooLong = 2,
  kFieldTooShort = 3,
  kFieldRange = 5,
  kUnknownRequest = 6,
  kBusy = 14,
  kPaperEnd = 25,
  kPrinterOffline = 26,
  kSaleOperation = 37,
  kVatRate = 39,
  kPaymentNumber = 40,
  kPrinterTimeout = 41,
  kPrinterHead = 44,
  kTransactionNotOpen = 64,
  kTransactionOpen = 65,
  kCashInOpen = 67,
  kCashOutOpen = 68,
  kInPayment = 69,
  kMustClose = 75,
  kZeroPrice = 79,
  kCategory = 84,
  kDepartment = 85,
  kPaymentTaken = 89,
  kNotInPayment = 91,
  kPrice = 96,
  kNoMoreSales = 99,
  kQuantity = 103,
  kBlankDescription = 107,
  kNegativeTotal = 109,
  kNoChange = 112,
  kPaymentAmount = 113,
  kReceiptLimit = 116,
  kDayLimit = 117,
  kInvalidRefund = 123,
  kInvalidVoid = 124,
  kAmountLimit = 125,
  kGsisBusy = 146,
  kZeroTotal = 165,
};

}  // namespace mirvane::emulator
