#pragma once

#include <span>

#include "automation/object.h"
#include "interface/compounds.h"
#include "interface/outcome.h"
#include "records/cls_accumulator.h"
#include "records/cls_daily_acc.h"
#include "records/cls_eft.h"
#include "records/cls_param.h"
#include "records/cls_status.h"
#include "records/cls_trans_total.h"

// What a program can ask of a register; each member appears once. Every driver offers them under exactly these names,
// and the facade calls them by name, with the caller's own variables. A driver implements a member with
// implement<Member>. The facade, the null driver, the type library and the reference are made from the rows.
//
// Every operation reports through its Outcome: three variables of the caller, whose names are omitted here. Pass, where
// present, is not used. Amounts are in euro, rates in percent.
namespace mirvane::contract {

using Integer = std::int16_t;
using Real = double;
using Byte = std::uint8_t;

/// Where a member is in the two classes that programs see: its dispatch ids (0 if a class does not offer it), and its
/// name in the facade if that differs. Ids never change: programs are compiled with them.
struct Places {
  std::int32_t facade = 0;
  std::int32_t null = 0;
  std::string_view facadeName{};
};

/// What the null driver does with the variables that the member fills.
enum class WithoutDevice { kLeft, kCleared };

/// One member: its description, its places, and what it does, in Markdown.
template <class S>
struct MemberRow : Described<S> {
  Places places;
  std::string_view sentence;
  WithoutDevice withoutDevice;

  template <std::size_t N>
  consteval MemberRow(std::string_view itsName, MemberKind itsKind, Places itsPlaces,
                      const std::array<Parameter, N>& names, std::string_view itsSentence, WithoutDevice without)
      : Described<S>(itsName, itsKind, names), places(itsPlaces), sentence(itsSentence), withoutDevice(without) {}
};

template <class S, std::size_t N>
consteval MemberRow<S> operation(std::string_view name, Places places, const Parameter (&names)[N],
                                 std::string_view sentence = {}, WithoutDevice without = WithoutDevice::kLeft) {
  return {name, MemberKind::method, places, std::to_array(names), sentence, without};
}
template <class S, std::size_t N>
consteval MemberRow<S> operation(std::string_view name, Places places, const std::array<Parameter, N>& names,
                                 std::string_view sentence) {
  return {name, MemberKind::method, places, names, sentence, WithoutDevice::kLeft};
}
template <class S>
consteval MemberRow<S> property(std::string_view name, Places places, std::string_view sentence) {
  return {name, MemberKind::get, places, std::array<Parameter, 0>(), sentence, WithoutDevice::kLeft};
}

inline constexpr std::array<Parameter, 0> kNone{};

using Plain = Value(Outcome);
using WithText = Value(Text&, Outcome);
using WithInteger = Value(Integer&, Outcome);
using WithAmount = Value(Real&, Text&, Outcome);
using ItemLine = Value(Text&, Real&, Real&, Real&, Integer&, Outcome, Text&, Integer&);
using CardPayment = Value(Integer&, Text&, Real&, Integer&, Integer&, Outcome, Text&, bool&, bool&);
template <class Record>
using WithRecord = void(Record&, Outcome);

inline constexpr std::array<Parameter, 7> kItem = {"itemDesc",
                                                   "itemQuan",
                                                   "itemUnitPrice",
                                                   "itemVatRate",
                                                   "itemDep",
                                                   optional("itemComment"),
                                                   optional("itemCategory", std::int16_t{1})};
// ---- Connection

inline constexpr auto SendCommand_ = operation<void(Text&, Outcome, Text&)>(
    "SendCommand_", {3, 1}, {"CmdString", "Pass"},
    "Sends one command of your own to the register; `Exresult` becomes the reply. `Pass` is not used.");
inline constexpr auto GetVersionInfo = operation<void(Outcome, Text&)>(
    "GetVersionInfo", {4, 2}, {"Pass"},
    "Identifies the register: `Exresult` becomes four lines: model, version and build, version of this component, "
    "its name. `Pass` is not used.");
inline constexpr auto Connect_ = operation<void(Text, Outcome)>(
    "Connect_", {5, 3}, {"PORT"},
    "Opens the port: \"COM1\" and so on, or \"192.168.1.50:9100\", optionally followed by \":\" and a local port. "
    "Sends nothing to the register. A port that is already open stays open, whatever `PORT` says.");
inline constexpr auto DisConnect_ = operation<WithText>(
    "DisConnect_", {6, 4}, {"PORT"},
    "Closes the port. `Result` is 1 if it was closed, 0 if none was open; `Exresult` does not change.");
inline constexpr auto logoLineDescLength = property<std::int16_t()>(
    "logoLineDescLength", {1, 49},
    "Longest logo line in characters: 48, or 0 when no register is connected. Reading it before `Connect_` makes "
    "`Connect_` fail: see [connect](connect.md).");

// ---- Receipt

inline constexpr auto ItemSale = operation<ItemLine>(
    "ItemSale", {7, 5}, kItem,
    "Sells an item: prints its line, and opens a receipt if none is open. `itemVatRate` is in percent and must be one "
    "of the register's rates. Description and comment are cut to 30 characters.");
inline constexpr auto ItemVoid = operation<ItemLine>("ItemVoid", {8, 6}, kItem, "Cancels a line of the open receipt.");
inline constexpr auto ItemRefund =
    operation<ItemLine>("ItemRefund", {9, 7}, kItem, "Takes back goods of an earlier receipt.");
/// Pays, and closes the receipt if nothing remains to be paid. The null driver's form, without a card terminal.
inline constexpr auto Payment = operation<Value(Integer&, Text&, Real&, Outcome, Text&, bool&)>(
    "Payment", {0, 8},
    {"paymentNumber", "paymentDesc", "paymentAmount", optional("paymentDesc2"), optional("bReadEJ", false)});

// ---- Paper, drawer, display, documents

inline constexpr auto FeedPaper =
    operation<WithInteger>("FeedPaper", {12, 9}, {"Lines_"}, "Feeds the paper by the given number of lines.");
inline constexpr auto commentPrinterPrint = operation<Value(Text&, Integer&, Outcome)>(
    "commentPrinterPrint", {13, 10}, {"CommentText_", "Size_"},
    "Prints a comment of at most 48 characters. A blank comment prints nothing and succeeds.");
inline constexpr auto commentDisplayPrint = operation<Value(Integer&, Text&, Outcome)>(
    "commentDisplayPrint", {14, 11}, {"lineNumber", "CommentText_"},
    "Shows a text of at most 20 characters on a line of the customer display. Accents are kept; the text must not "
    "contain \"/\".");
inline constexpr auto issueZReport = operation<Plain>(
    "issueZReport", {15, 12}, kNone,
    "Closes the fiscal day: saves its journal, then prints the Z report. Set `Result` before the call: see "
    "[close the day](close-the-day.md).");
inline constexpr auto issueZReprintReport = operation<Plain>(
    "issueZReprintReport", {16, 13}, kNone,
    "Prints the last Z report again, or finishes a closing that got stuck. Set `Result` before the call.");
inline constexpr auto issueXReport =
    operation<Plain>("issueXReport", {17, 14}, kNone, "Prints the day's totals so far and closes nothing.");
inline constexpr auto DrawerOpen = operation<Plain>("DrawerOpen", {18, 15}, kNone, "Opens the cash drawer.");
inline constexpr auto CutPaper = operation<Value(bool&, Outcome)>(
    "CutPaper", {19, 16}, {"Full_"}, "Cuts the paper: fully when `Full_` is True, otherwise partially.");
inline constexpr auto executeCashIn =
    operation<WithAmount>("executeCashIn", {20, 17}, {"Amount", "cashInDesc"},
                          "Records cash put into the drawer; prints a document of its own.");
inline constexpr auto executeCashOut =
    operation<WithAmount>("executeCashOut", {21, 18}, {"Amount", "cashOutDesc"},
                          "Records cash taken out of the drawer; prints a document of its own.");
inline constexpr auto VoidReceipt = operation<Plain>(
    "VoidReceipt", {22, 19}, kNone, "Cancels the open receipt, or closes it if it can no longer be cancelled.");

// ---- Reads and settings

inline constexpr auto getDate =
    operation<WithText>("getDate", {23, 20}, {output("d")}, "Reads the register's date, in its own format.");
inline constexpr auto getTime =
    operation<WithText>("getTime", {24, 21}, {output("d")}, "Reads the register's time, in its own format.");
inline constexpr auto getSerialNumber =
    operation<WithText>("getSerialNumber", {25, 22}, {output("sN")},
                        "Reads the register's serial number; from then on `FiscalSN` of the status has it.");
inline constexpr auto getHeader = operation<Value(PrintedLines<5, true>, Outcome)>(
    "getHeader", {26, 23}, kNone, "Reads the five lines above each receipt, and their sizes.");
inline constexpr auto setHeader = operation<Value(PrintedLines<5, false>, Outcome)>(
    "setHeader", {27, 24}, kNone, "Sets the five lines above each receipt, and their sizes.");
inline constexpr auto getFooter = operation<Value(PrintedLines<3, true>, Outcome)>(
    "getFooter", {28, 25}, kNone, "Reads the three lines below each receipt, and their sizes.");
inline constexpr auto setFooter = operation<Value(PrintedLines<3, false>, Outcome)>(
    "setFooter", {29, 26}, kNone, "Sets the three lines below each receipt, and their sizes.");
inline constexpr auto setTempFooter = operation<Value(Text&, Text&, Text&, Outcome)>(
    "setTempFooter", {30, 27}, {"line1", "line2", "line3"}, "Sets a footer for the open or the next receipt only.");
inline constexpr auto getVatCategories = operation<Value(VatRates<true>, Outcome)>(
    "getVatCategories", {31, 28}, kNone, "Reads the five VAT rates in percent.");
inline constexpr auto setVatCategories = operation<Value(VatRates<false>, Outcome)>(
    "setVatCategories", {32, 29}, kNone,
    "Sets the five VAT rates in percent. Sends nothing if the register already has them.");
inline constexpr auto sentBitmapData =
    operation<Value(Text&, Integer&, Outcome)>("sentBitmapData", {33, 30}, {"BMPfileName", "BitmapID"},
                                               "Not available: refused with `Result` 6, and nothing is sent.");
inline constexpr auto setReceiptBitmap = operation<WithInteger>(
    "setReceiptBitmap", {34, 31}, {"BitmapID"}, "Not available: refused with `Result` 6, and nothing is sent.");
inline constexpr auto setReceiptBitmapSize = operation<WithInteger>(
    "setReceiptBitmapSize", {35, 32}, {"sizeOf"}, "Not available: refused with `Result` 6, and nothing is sent.");
inline constexpr auto settingsRead =
    operation<WithRecord<clsParam>>("settingsRead", {36, 33}, {"c"}, "Reads the register's settings into a clsParam.");
inline constexpr auto settingsWrite = operation<WithRecord<clsParam>>(
    "settingsWrite", {37, 34}, {"c"},
    "Writes the settings in a clsParam to the register. Check `useLCDdisplay` if you read it before: see "
    "[configure](configure.md).");
inline constexpr auto setDepartment = operation<void(Integer&, Text&, Integer&, Outcome)>(
    "setDepartment", {42, 35}, {"depID", "depDescription", "depCategory"},
    "Does nothing, and leaves `Result` as it was: see [configure](configure.md).");
inline constexpr auto setCategory = operation<void(Integer&, Text&, Outcome)>(
    "setCategory", {43, 36}, {"catID", "catDescription"}, "Names a category of goods, with at most 35 characters.");
inline constexpr auto transactionTotals = operation<WithRecord<clsTransTotal>>(
    "transactionTotals", {44, 37}, {"c"}, "Reads the totals of the open receipt.", WithoutDevice::kCleared);
inline constexpr auto getSalesPerDepartment = operation<WithRecord<clsAccumulator>>(
    "getSalesPerDepartment", {45, 38}, {"c"}, "Reads today's sales of the department `Id`.", WithoutDevice::kCleared);
inline constexpr auto getSalesPerCategory = operation<WithRecord<clsAccumulator>>(
    "getSalesPerCategory", {46, 39}, {"c"}, "Reads today's sales of the category of goods `Id`.",
    WithoutDevice::kCleared);
inline constexpr auto getDailyTotals = operation<WithRecord<clsDailyAcc>>(
    "getDailyTotals", {47, 40}, {"c"}, "Reads the totals of the fiscal day so far, without the open receipt.",
    WithoutDevice::kCleared);
inline constexpr auto StatusRead = property<std::shared_ptr<clsStatus>()>(
    "StatusRead", {48, 41}, "The state from the register's last reply. Sends nothing.");
inline constexpr auto printerStatusRead = operation<void(Outcome)>(
    "printerStatusRead", {49, 42}, kNone, "Asks the register for its state, which `StatusRead` then returns.");
inline constexpr auto setVATNumber = operation<void(Text&, Outcome, Text&)>(
    "setVATNumber", {50, 43}, {"sVat", "Pass"},
    "Sets the owner's VAT number, and prints \"VAT = \" and the number in any case. `Result` is that of the paper feed "
    "that follows: see [configure](configure.md). `Pass` is not used.");
inline constexpr auto setTaxCardNumber = operation<void(Text&, Outcome, Text&)>(
    "setTaxCardNumber", {53, 0}, {"nTaxCard", "Pass"}, "Not available: refused with `Result` 6, and nothing is sent.");
inline constexpr auto setServer = operation<void(Byte, Text, Text, Text, Outcome, Text&)>(
    "setServer", {51, 44, "setServerSettings"}, {"bActiveSend", "sWeb", "sPort", "sAES", "Pass"},
    "Sets the tax authority's server. `sWeb` is the data address, \"|\" and the QR address; `sAES` the "
    "key. `Pass` is not used.");
inline constexpr auto getServer = operation<void(Byte&, Text&, Text&, Text&, Outcome, Text&)>(
    "getServer", {52, 45, "getServerSettings"},
    {output("bActiveSend"), output("sWeb"), output("sPort"), output("sAES"), "Pass"},
    "Reads the tax authority's server. `Pass` is not used.");

// ---- Card terminals

inline constexpr auto eftRead =
    operation<WithRecord<clsEFT>>("eftRead", {38, 46}, {"c"}, "Reads the settings of card terminal number `eftId`.");
inline constexpr auto eftWrite =
    operation<WithRecord<clsEFT>>("eftWrite", {39, 47, "eftSet"}, {"c"},
                                  "Writes the settings of card terminal number `eftId`. `eftEnabled` and `eftMDW` are "
                                  "sent as their sum, at most 255: "
                                  "a larger sum raises an overflow (6), and nothing is sent.");
inline constexpr auto eftTest = operation<WithRecord<clsEFT>>(
    "eftTest", {40, 48}, {"c"}, "Makes the register test whether the card terminal answers.");
inline constexpr auto eftdel =
    operation<WithRecord<clsEFT>>("eftdel", {41, 0}, {"c"}, "Removes card terminal number `eftId` from the register.");

// ---- About results

/// Whether the register ends the state behind this Result by itself, so that waiting helps.
inline constexpr auto bFixableError = operation<bool(Integer&)>("bFixableError", {0, 50}, {"iErr"});
inline constexpr auto isErrorFixable = operation<bool(Integer&)>("isErrorFixable", {0, 51}, {"iErr"});
/// Whether the command that ended with this Result may be sent again once the state has passed.
inline constexpr auto bShouldRetry = operation<bool(Integer&)>("bShouldRetry", {0, 52}, {"iErr"});
/// Whether this Result means that the register cannot continue without help.
inline constexpr auto isCriticalError = operation<bool(Integer&)>("isCriticalError", {0, 53}, {"iErr"});
// ---- Members of drivers only

/// Pays, by card terminal eftposNum of type eftposType if these are greater than 0, and closes the receipt if nothing
/// remains to be paid. The drivers' form; the facade's Payment calls it.
inline constexpr auto DriverPayment =
    method<CardPayment>("Payment", {"paymentNumber", "paymentDesc", "paymentAmount", "eftposNum", "eftposType",
                                    optional("paymentDesc2"), optional("bReadEJ"), optional("inPrePayment")});
/// The last complete reply as the register sent it, from which the component reads the fields. Exresult instead holds
/// the operator's text if the reply reports a condition such as paper end.
inline constexpr Described<Text()> lastReply{"lastReply", MemberKind::get, std::array<Parameter, 0>()};

// ---- All members

/// A row with any signature.
struct AnyMember {
  Places places;
  WithoutDevice withoutDevice;
  std::string_view name, sentence;
  MemberKind kind;
  std::span<const Parameter> parameters;
  Type result;

  template <class S>
  constexpr AnyMember(const MemberRow<S>& member)
      : places(member.places),
        withoutDevice(member.withoutDevice),
        name(member.name),
        sentence(member.sentence),
        kind(member.kind),
        parameters(member.parameters),
        result(Signature<S>::kResult) {}

  std::string_view facadeName() const { return places.facadeName.empty() ? name : places.facadeName; }
  /// The row for a class that handles all signatures alike.
  Member withBody(Body body) const {
    return {name, kind, 0, Parameters(parameters.begin(), parameters.end()), result, std::move(body)};
  }
};

/// In the order of the facade.
inline constexpr AnyMember kMembers[] = {logoLineDescLength,
                                         SendCommand_,
                                         GetVersionInfo,
                                         Connect_,
                                         DisConnect_,
                                         ItemSale,
                                         ItemVoid,
                                         ItemRefund,
                                         Payment,
                                         FeedPaper,
                                         commentPrinterPrint,
                                         commentDisplayPrint,
                                         issueZReport,
                                         issueZReprintReport,
                                         issueXReport,
                                         DrawerOpen,
                                         CutPaper,
                                         executeCashIn,
                                         executeCashOut,
                                         VoidReceipt,
                                         getDate,
                                         getTime,
                                         getSerialNumber,
                                         getHeader,
                                         setHeader,
                                         getFooter,
                                         setFooter,
                                         setTempFooter,
                                         getVatCategories,
                                         setVatCategories,
                                         sentBitmapData,
                                         setReceiptBitmap,
                                         setReceiptBitmapSize,
                                         settingsRead,
                                         settingsWrite,
                                         eftRead,
                                         eftWrite,
                                         eftTest,
                                         eftdel,
                                         setDepartment,
                                         setCategory,
                                         transactionTotals,
                                         getSalesPerDepartment,
                                         getSalesPerCategory,
                                         getDailyTotals,
                                         StatusRead,
                                         printerStatusRead,
                                         setVATNumber,
                                         setServer,
                                         getServer,
                                         setTaxCardNumber,
                                         bFixableError,
                                         isErrorFixable,
                                         bShouldRetry,
                                         isCriticalError};

/// Whether the facade and the null driver have the row.
template <class S>
consteval bool isListed(const MemberRow<S>& row) {
  return std::ranges::any_of(kMembers, [&row](const AnyMember& member) { return member.name == row.name; });
}

}  // namespace mirvane::contract
