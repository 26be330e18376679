#pragma once

#include <cstdint>

#include "text/text.h"

namespace mirvane {

/// Named outcomes of a command, as the first two characters of the reply give them in hexadecimal.
enum class DeviceCode : std::uint8_t {
  kOk = 0,
  kFieldCount = 1,
  kFieldTooLong = 2,
  kFieldTooShort = 3,
  kFieldRange = 5,
  kUnknownRequest = 6,
  kDayOpen = 10,
  kNoClosure = 13,
  kBusy = 14,
  kZWanted = 20,
  kClosing = 21,
  kPaperEnd = 25,
  kPrinterOffline = 26,
  kFiscalMemoryFull = 29,
  kBatteryFault = 32,
  kClockLost = 35,
  kSaleOperation = 37,
  kVatRate = 39,
  kPaymentNumber = 40,
  kPrinterTimeout = 41,
  kPrinterHead = 44,
  kJournalNotStarted = 58,
  kJournalNotTransferred = 61,
  kTransactionNotOpen = 64,
  kTransactionOpen = 65,
  kCashInOpen = 67,
  kCashOutOpen = 68,
  kInPayment = 69,
  kZeroAdjustment = 70,
  kAdjustmentInVat = 71,
  kAdjustmentInTotal = 72,
  kAdjustmentShares = 73,
  kMustClose = 75,
  kSameVatRate = 78,
  kZeroPrice = 79,
  kPreparing = 81,
  kCategory = 84,
  kDepartment = 85,
  kCutterError = 87,
  kPaymentTaken = 89,
  kNotInPayment = 91,
  kPrice = 96,
  kAdjustmentKind = 97,
  kAdjustmentPlace = 98,
  kNoMoreSales = 99,
  kQuantity = 103,
  kAdjustmentLimit = 106,
  kBlankDescription = 107,
  kNegativeTotal = 109,
  kNoChange = 112,
  kPaymentAmount = 113,
  kReceiptLimit = 116,
  kDayLimit = 117,
  kVatNumber = 120,
  kInvalidIp = 122,
  kInvalidRefund = 123,
  kInvalidVoid = 124,
  kAmountLimit = 125,
  kEmptyHeader = 126,
  kJournalWrite = 134,
  kServerKey = 136,
  kEthernet = 138,
  kGsisBusy = 146,
  kCardFailed = 156,
  kCardNotRead = 157,
  kCardUnderWay = 158,
  kTerminalInactive = 159,
  kReservedIp = 160,
  kZeroTotal = 165,
};

/// Values of Result for port and link failures. Programs know these numbers.
namespace link_result {
constexpr std::int16_t kCannotOpen = -1;
constexpr std::int16_t kCannotConfigure = -2;
constexpr std::int16_t kNoAnswer = -3;           ///< network: four attempts without a reply; or the outcome is unknown
constexpr std::int16_t kNoAnswerToCommand = -4;  ///< serial line: seen only while the exchange is being repeated
constexpr std::int16_t kNotOpen = -6;
constexpr std::int16_t kNotNow = -207;   ///< network: NAK
constexpr std::int16_t kNoDevice = 100;  ///< no register was found, or none was looked for

// Their texts, where the message catalogue has none.
constexpr TextView kCannotOpenText = u"Πρόβλημα στην Θύρα :";  ///< followed by the port
/// Its first letter is Latin: programs in the field compare it.
constexpr TextView kNoAnswerText = u"H ταμειακή δεν Απαντά!";
constexpr TextView kNoAnswerToCommandText = u"Ο Φορολ. Εκτυπωτής δεν Απαντά σε εντολή !";
constexpr TextView kNotNowText = u"Αναμονή Απόκρισης Ταμειακής...";
constexpr TextView kNoDeviceText = u"Λάθος τύπος Φορολ. Εκτυπωτή";
}  // namespace link_result

/// The register's message for one of its result codes, 1 to 166; empty for any other.
TextView deviceErrorText(std::int32_t code);

/// Whether the register ends the state behind this result by itself: busy, busy with the tax authority, or a card
/// payment in progress. Paper end, an open tray or an offline printer need a person, and there may be none.
bool endsByItself(std::int32_t result);

/// Whether the command that met such a state may be sent again afterwards. Never after a card payment: the register
/// accepted that command, and sending it again could charge the card twice.
bool mayBeSentAgain(std::int32_t result);

/// Whether the till cannot continue without help from outside: failures of the fiscal unit, battery, flash or memory
/// card, and a lost link; but not a register that asks to be tried later.
bool isCritical(std::int32_t result);

}  // namespace mirvane
