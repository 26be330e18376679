#include "automation/number_text.h"
#include "driver/command.h"
#include "driver/fiscal_varlen_module2.h"
#include "driver/reply_fields.h"
#include "driver/result_codes.h"
#include "interface/module_state.h"

namespace mirvane {
namespace {

constexpr std::size_t kItemText = 30;
constexpr std::size_t kPrinterComment = 48;
constexpr std::size_t kDisplayComment = 20;

// The device may be waiting for a card terminal.
constexpr std::int16_t kPaymentSeconds = 180;

const Text kCloseReceipt = u"O/1/";
const Text kCancelReceipt = u"O/2/";
const Text kAskRemaining = u"5/99/1/1/1/";

constexpr int kRemainingAttempts = 3;

}  // namespace

void FiscalVarlenModule2::itemLine(TextView code, const Text& itemDesc, double itemQuan, double itemUnitPrice,
                                   double itemVatRate, std::int16_t itemDep, std::int16_t& Result, Text& Exresult,
                                   bool& SupressError_, const Text& itemComment, std::int16_t itemCategory) {
  const Text command = Command(code)
                           .text(itemDesc, kItemText)
                           .text(itemComment, kItemText)
                           .empty()
                           .quantity(itemQuan)
                           .amount(itemUnitPrice)
                           .integer(itemDep)
                           .amount(itemVatRate)
                           .integer(itemCategory == 0 ? 1 : itemCategory)
                           .str();
  send(command, Result, Exresult, SupressError_);
  if (Result != 0) return;
  moduleState().lastItemDep = itemDep;
  moduleState().lastItemAmount = itemQuan * itemUnitPrice;
}

Value FiscalVarlenModule2::ItemSale(Text& itemDesc, double& itemQuan, double& itemUnitPrice, double& itemVatRate,
                                    std::int16_t& itemDep, std::int16_t& Result, Text& Exresult, bool& SupressError_,
                                    Text& itemComment, std::int16_t& itemCategory) {
  itemLine(u"3/S//", itemDesc, itemQuan, itemUnitPrice, itemVatRate, itemDep, Result, Exresult, SupressError_,
           itemComment, itemCategory);
  return {};
}

Value FiscalVarlenModule2::ItemVoid(Text& itemDesc, double& itemQuan, double& itemUnitPrice, double& itemVatRate,
                                    std::int16_t& itemDep, std::int16_t& Result, Text& Exresult, bool& SupressError_,
                                    Text& itemComment, std::int16_t& itemCategory) {
  itemLine(u"3/V//", itemDesc, itemQuan, itemUnitPrice, itemVatRate, itemDep, Result, Exresult, SupressError_,
           itemComment, itemCategory);
  return {};
}

Value FiscalVarlenModule2::ItemRefund(Text& itemDesc, double& itemQuan, double& itemUnitPrice, double& itemVatRate,
                                      std::int16_t& itemDep, std::int16_t& Result, Text& Exresult, bool& SupressError_,
                                      Text& itemComment, std::int16_t& itemCategory) {
  itemLine(u"3/R//", itemDesc, itemQuan, itemUnitPrice, itemVatRate, itemDep, Result, Exresult, SupressError_,
           itemComment, itemCategory);
  return {};
}

std::shared_ptr<clsAdjust> FiscalVarlenModule2::adjustment(bool& onLastItem) {
  moduleState().adjustOnLastItem = onLastItem;
  return std::make_shared<clsAdjust>();
}

// A reply that does not tell what remains says nothing, least of all that nothing remains: it is asked for again. A
// field without a number counts as nothing; the device, which knows, then refuses to close.
bool FiscalVarlenModule2::isPaid(std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  for (int attempt = 0; attempt < kRemainingAttempts; ++attempt) {
    send(kAskRemaining, Result, Exresult, SupressError_);
    if (Result != 0) return false;
    const ReplyFields fields(lastReply_);
    if (!fields.empty()) return fields.number(0) <= 0;
  }
  Result = kNoAnswer;
  Exresult = kNoAnswerText;
  report(Result, Exresult, SupressError_);
  return false;
}

Value FiscalVarlenModule2::Payment(std::int16_t& paymentNumber, Text& paymentDesc, double& paymentAmount,
                                   std::int16_t& eftposNum, std::int16_t& eftposType, std::int16_t& Result,
                                   Text& Exresult, bool& SupressError_, Text& paymentDesc2, bool& bReadEJ,
                                   bool& /*inPrePayment*/) {
  Command command(u"5/");
  command.integer(paymentNumber).text(paymentDesc, kItemText).text(paymentDesc2, kItemText).amount(paymentAmount);
  for (const std::int16_t number : {eftposNum, eftposType}) {
    if (number > 0) {
      command.integer(number);
    } else {
      command.empty();
    }
  }
  send(command.str(), Result, Exresult, SupressError_, kPaymentSeconds);
  if (Result != 0 || !isPaid(Result, Exresult, SupressError_)) return {};
  send(kCloseReceipt, Result, Exresult, SupressError_);
  if (Result != 0 || !bReadEJ) return {};

  // The journal wants the device's state after the receipt; the caller's outcome stays that of the payment.
  Text version = u"v/";
  std::int16_t versionResult = 0;
  Text versionText;
  bool silent = true;
  Text noPass;
  std::int16_t timeOut = 0;
  Send_(version, versionResult, versionText, silent, noPass, timeOut);
  return {};
}

Value FiscalVarlenModule2::FeedPaper(std::int16_t& Lines_, std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  send(Command(u"F/").integer(Lines_).str(), Result, Exresult, SupressError_);
  return {};
}

Value FiscalVarlenModule2::commentPrinterPrint(Text& CommentText_, std::int16_t& Size_, std::int16_t& Result,
                                               Text& Exresult, bool& SupressError_) {
  const Text comment = left(CommentText_, kPrinterComment);
  if (trim(comment).empty()) {
    Result = 0;
    Exresult.clear();
    return {};
  }
  send(Command(u"P/").text(comment).integer(Size_).str(), Result, Exresult, SupressError_);
  return {};
}

Value FiscalVarlenModule2::commentDisplayPrint(std::int16_t& lineNumber, Text& CommentText_, std::int16_t& Result,
                                               Text& Exresult, bool& SupressError_) {
  send(Command(u"2/10/0/0/").integer(lineNumber).verbatim(left(CommentText_, kDisplayComment)).str(), Result, Exresult,
       SupressError_);
  return {};
}

Value FiscalVarlenModule2::DrawerOpen(std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  send(u"p/1/", Result, Exresult, SupressError_);
  return {};
}

Value FiscalVarlenModule2::CutPaper(bool& Full_, std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  send(Command(u"p/2/").integer(Full_ ? 1 : 0).str(), Result, Exresult, SupressError_);
  return {};
}

void FiscalVarlenModule2::cashDocument(TextView code, double amount, const Text& description, std::int16_t& Result,
                                       Text& Exresult, bool& SupressError_) {
  send(Command(code).amount(amount).text(description).str(), Result, Exresult, SupressError_);
  if (Result == 0) send(kCloseReceipt, Result, Exresult, SupressError_);
}

Value FiscalVarlenModule2::executeCashIn(double& Amount, Text& cashInDesc, std::int16_t& Result, Text& Exresult,
                                         bool& SupressError_) {
  cashDocument(u"6/0/", Amount, cashInDesc, Result, Exresult, SupressError_);
  return {};
}

Value FiscalVarlenModule2::executeCashOut(double& Amount, Text& cashOutDesc, std::int16_t& Result, Text& Exresult,
                                          bool& SupressError_) {
  cashDocument(u"6/1/", Amount, cashOutDesc, Result, Exresult, SupressError_);
  return {};
}

Value FiscalVarlenModule2::VoidReceipt(std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  send(kCancelReceipt, Result, Exresult, SupressError_);
  if (Result != 0) send(kCloseReceipt, Result, Exresult, SupressError_);
  return {};
}

}  // namespace mirvane
