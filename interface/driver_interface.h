#pragma once

#include "automation/member.h"
#include "interface/outcome.h"
#include "records/cls_accumulator.h"
#include "records/cls_daily_acc.h"
#include "records/cls_eft.h"
#include "records/cls_param.h"
#include "records/cls_status.h"
#include "records/cls_trans_total.h"

// What a program can ask of a register. Every driver offers these members under exactly these names, and the facade
// reaches them by name, with the caller's own variables.
//
// Every operation reports through its Outcome: three variables of the caller's.
// Pass, where there is one, is the command's password. Amounts are in euro, rates in percent.
namespace mirvane::contract {

using Integer = std::int16_t;
using Real = double;
using Byte = std::uint8_t;

/// An operation: its own parameters, the variables that it reports through, and what stands behind those.
template <class Signature>
Contract<Signature> method(std::string_view name, ParameterNames before = {}, ParameterNames after = {}) {
  return {name, MemberKind::method, parametersOf({before, kOutcome, after})};
}

using Plain = Value(Outcome);
using PlainProcedure = void(Outcome);
using WithText = Value(Text&, Outcome);
using WithInteger = Value(Integer&, Outcome);
using WithAmount = Value(Real&, Text&, Outcome);
using FiveRates = Value(Real&, Real&, Real&, Real&, Real&, Outcome);
using FiveLines = Value(Text&, Integer&, Text&, Integer&, Text&, Integer&, Text&, Integer&, Text&, Integer&, Outcome);
using ThreeLines = Value(Text&, Integer&, Text&, Integer&, Text&, Integer&, Outcome);
template <class Record>
using WithRecord = void(Record&, Outcome);
using Classifier = bool(Integer&);
using ItemLine = Value(Text&, Real&, Real&, Real&, Integer&, Outcome, Text&, Integer&);

// ---- Connection

/// Sends a command text of the caller's own.
inline const auto SendCommand_ = method<void(Text&, Outcome, Text&)>("SendCommand_", {"CmdString"}, {"Pass"});
/// Exresult becomes four lines: model, version and build, version of the driver, name of the component.
inline const auto GetVersionInfo = method<void(Outcome, Text&)>("GetVersionInfo", {}, {"Pass"});
/// PORT is "COM1" and so on, or "192.168.1.50:9100" with an optional ":local port" for a register on the network.
inline const auto Connect_ = method<void(Text, Outcome)>("Connect_", {"PORT"});
/// Result is 1 when a port was closed, 0 when none was open.
inline const auto DisConnect_ = method<WithText>("DisConnect_", {"PORT"});

// ---- Receipt

inline constexpr std::array<ParameterName, 5> kItemParameters = {"itemDesc", "itemQuan", "itemUnitPrice", "itemVatRate",
                                                                 "itemDep"};
inline constexpr std::array<ParameterName, 2> kItemOptions = {optional("itemComment"),
                                                              optional("itemCategory", std::int16_t{1})};

/// Prints an item line, opening a receipt when none is open. itemVatRate must be one of the device's rates.
inline const auto ItemSale = method<ItemLine>("ItemSale", kItemParameters, kItemOptions);
/// Takes back a line of the open receipt.
inline const auto ItemVoid = method<ItemLine>("ItemVoid", kItemParameters, kItemOptions);
/// Takes back goods of an earlier receipt.
inline const auto ItemRefund = method<ItemLine>("ItemRefund", kItemParameters, kItemOptions);
/// Pays, and closes the receipt when nothing is left to pay. The form without a card terminal, of the null driver.
inline const auto Payment = method<Value(Integer&, Text&, Real&, Outcome, Text&, bool&)>(
    "Payment", {"paymentNumber", "paymentDesc", "paymentAmount"},
    {optional("paymentDesc2"), optional("bReadEJ", false)});
/// Pays, by card terminal eftposNum of type eftposType where these are greater than 0, and closes the receipt when
/// nothing is left to pay. The form of the drivers.
using CardPayment = Value(Integer&, Text&, Real&, Integer&, Integer&, Outcome, Text&, bool&, bool&);
inline constexpr std::array<ParameterName, 5> kCardPaymentParameters = {"paymentNumber", "paymentDesc", "paymentAmount",
                                                                        "eftposNum", "eftposType"};
inline const auto DriverPayment = method<CardPayment>(
    "Payment", kCardPaymentParameters, {optional("paymentDesc2"), optional("bReadEJ"), optional("inPrePayment")});

// ---- Paper, drawer, display, documents

inline const auto FeedPaper = method<WithInteger>("FeedPaper", {"Lines_"});
/// At most 48 characters.
inline const auto commentPrinterPrint =
    method<Value(Text&, Integer&, Outcome)>("commentPrinterPrint", {"CommentText_", "Size_"});
/// At most 20 characters.
inline const auto commentDisplayPrint =
    method<Value(Integer&, Text&, Outcome)>("commentDisplayPrint", {"lineNumber", "CommentText_"});
/// The daily closing.
inline const auto issueZReport = method<Plain>("issueZReport");
inline const auto issueZReprintReport = method<Plain>("issueZReprintReport");
/// The day's totals so far; closes nothing.
inline const auto issueXReport = method<Plain>("issueXReport");
inline const auto DrawerOpen = method<Plain>("DrawerOpen");
inline const auto CutPaper = method<Value(bool&, Outcome)>("CutPaper", {"Full_"});
inline const auto executeCashIn = method<WithAmount>("executeCashIn", {"Amount", "cashInDesc"});
inline const auto executeCashOut = method<WithAmount>("executeCashOut", {"Amount", "cashOutDesc"});
/// Cancels the open receipt, or closes it when it cannot be cancelled any more.
inline const auto VoidReceipt = method<Plain>("VoidReceipt");

// ---- Reads and settings

inline const auto getDate = method<WithText>("getDate", {output("d")});
inline const auto getTime = method<WithText>("getTime", {output("d")});
inline const auto getSerialNumber = method<WithText>("getSerialNumber", {output("sN")});
inline constexpr std::array<ParameterName, 10> kFiveLines = {
    "line1", "line1Size", "line2", "line2Size", "line3", "line3Size", "line4", "line4Size", "line5", "line5Size"};
inline constexpr std::array<ParameterName, 6> kThreeLines = {"line1",     "line1Size", "line2",
                                                             "line2Size", "line3",     "line3Size"};
inline constexpr std::array<ParameterName, 5> kFiveRates = {"VatA", "VatB", "VatC", "VatD", "VatE"};
inline const auto getHeader = method<FiveLines>("getHeader", outputs(kFiveLines));
inline const auto setHeader = method<FiveLines>("setHeader", kFiveLines);
inline const auto getFooter = method<ThreeLines>("getFooter", outputs(kThreeLines));
inline const auto setFooter = method<ThreeLines>("setFooter", kThreeLines);
/// A footer for the next receipt only.
inline const auto setTempFooter =
    method<Value(Text&, Text&, Text&, Outcome)>("setTempFooter", {"line1", "line2", "line3"});
inline const auto getVatCategories = method<FiveRates>("getVatCategories", outputs(kFiveRates));
inline const auto setVatCategories = method<FiveRates>("setVatCategories", kFiveRates);
inline const auto sentBitmapData =
    method<Value(Text&, Integer&, Outcome)>("sentBitmapData", {"BMPfileName", "BitmapID"});
inline const auto setReceiptBitmap = method<WithInteger>("setReceiptBitmap", {"BitmapID"});
inline const auto setReceiptBitmapSize = method<WithInteger>("setReceiptBitmapSize", {"sizeOf"});
inline const auto settingsRead = method<WithRecord<clsParam>>("settingsRead", {"c"});
inline const auto settingsWrite = method<WithRecord<clsParam>>("settingsWrite", {"c"});
inline const auto setDepartment =
    method<void(Integer&, Text&, Integer&, Outcome)>("setDepartment", {"depID", "depDescription", "depCategory"});
inline const auto setCategory = method<void(Integer&, Text&, Outcome)>("setCategory", {"catID", "catDescription"});
inline const auto transactionTotals = method<WithRecord<clsTransTotal>>("transactionTotals", {"c"});
inline const auto getSalesPerDepartment = method<WithRecord<clsAccumulator>>("getSalesPerDepartment", {"c"});
inline const auto getSalesPerCategory = method<WithRecord<clsAccumulator>>("getSalesPerCategory", {"c"});
inline const auto getDailyTotals = method<WithRecord<clsDailyAcc>>("getDailyTotals", {"c"});
/// The state that the device reported last; asks it nothing.
inline const Contract<std::shared_ptr<clsStatus>()> StatusRead{"StatusRead", MemberKind::get, {}};
/// Asks the device for its state, for StatusRead to tell.
inline const auto printerStatusRead = method<PlainProcedure>("printerStatusRead");
inline const auto setVATNumber = method<void(Text&, Outcome, Text&)>("setVATNumber", {"sVat"}, {"Pass"});
inline const auto setTaxCardNumber = method<void(Text&, Outcome, Text&)>("setTaxCardNumber", {"nTaxCard"}, {"Pass"});
inline constexpr std::array<ParameterName, 4> kServer = {"bActiveSend", "sWeb", "sPort", "sAES"};
inline const auto setServer =
    method<void(std::uint8_t, Text, Text, Text, Outcome, Text&)>("setServer", kServer, {"Pass"});
inline const auto getServer =
    method<void(Byte&, Text&, Text&, Text&, Outcome, Text&)>("getServer", outputs(kServer), {"Pass"});

// ---- Card terminals

inline const auto eftRead = method<WithRecord<clsEFT>>("eftRead", {"c"});
inline const auto eftWrite = method<WithRecord<clsEFT>>("eftWrite", {"c"});
inline const auto eftTest = method<WithRecord<clsEFT>>("eftTest", {"c"});
inline const auto eftdel = method<WithRecord<clsEFT>>("eftdel", {"c"});

// ---- Of drivers that talk to a device

/// The last complete reply as the device sent it, from which the component takes its fields: Exresult has the text for
/// the operator where the reply tells of a condition such as paper end.
inline const Contract<Text()> lastReply{"lastReply", MemberKind::get, {}};

// ---- About results

/// Longest logo line in characters.
inline const Contract<std::int16_t()> logoLineDescLength{"logoLineDescLength", MemberKind::get, {}};
/// Whether a Result tells of a state that the device ends by itself, so that waiting helps.
inline const Contract<Classifier> bFixableError{"bFixableError", MemberKind::method, parametersOf({{"iErr"}})};
inline const Contract<Classifier> isErrorFixable{"isErrorFixable", MemberKind::method, parametersOf({{"iErr"}})};
/// Whether the command that ended with this Result may be sent again once the state has passed.
inline const Contract<Classifier> bShouldRetry{"bShouldRetry", MemberKind::method, parametersOf({{"iErr"}})};
/// Whether a Result tells that the register cannot go on without help.
inline const Contract<Classifier> isCriticalError{"isCriticalError", MemberKind::method, parametersOf({{"iErr"}})};

}  // namespace mirvane::contract
