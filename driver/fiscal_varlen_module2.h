#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "interface/cls_status.h"
#include "platform/ports.h"
#include "support/price_adjustments.h"

namespace mirvane {

struct clsAccumulator;
struct clsDailyAcc;
struct clsEFT;
struct clsParam;
struct clsTransTotal;
class FiscalJournal;
class ReplyFields;

/// The driver of the second-generation device. One source file per subject: link, errors, connection, transactions,
/// reports, reads, configuration, eftpos, wait_dialog. What each member of the driver interface does for the caller is
/// told there; see interface/driver_interface.h.
class FiscalVarlenModule2 : public ObjectOf<FiscalVarlenModule2> {
 public:
  static constexpr std::string_view kName = "FiscalVarlenModule2";
  static const ClassInfo& describe();

  // ---- Link (link.cpp)

  /// Writes the text unchanged to the device; whether anything was sent.
  bool SendData(Text& text);
  /// What is waiting: one datagram, or one read of the serial line.
  Text recData();
  /// Whether a datagram is waiting; always False on a serial line.
  bool availData();
  /// Drops unread input.
  void clearBuffer();

  /// The last complete reply, without control bytes.
  Text lastReply() { return lastReply_; }

  /// Outcome of the last wait for the device.
  std::int16_t lastResult{};
  Text lastexResult;

  /// Frames and sends one command and takes its reply: Result is the device's code, or less than 0 for a failed link,
  /// and Exresult the reply or its meaning. `timeOut` is how many seconds the device may take before a serial exchange
  /// is repeated. A command that only asks is sent again when the reply tells nothing, three times in all. Returns the
  /// reply, empty when there was none. Shows no box of its own but, when SupressError_ is False, the one about
  /// characters that the device does not know; the network endpoint shows its boxes to everybody.
  Text Send_(Text& command, std::int16_t& Result, Text& Exresult, bool& SupressError_, Text& Pass,
             std::int16_t& timeOut);

  // ---- Errors (errors.cpp)

  /// Sends one command and reports its failure in a message box unless SupressError_ is True. A state that the device
  /// ends by itself is waited for, and the command sent again where that cannot do it twice. Pass is not used.
  void SendCommand_(Text& CmdString, std::int16_t& Result, Text& Exresult, bool& SupressError_, Text& Pass,
                    std::int16_t& timeOut);
  bool isErrorFixable(std::int16_t& iErr);
  bool bShouldRetry(std::int16_t& iErr);
  bool isCriticalError(std::int16_t& iErr);

  // ---- Connection (connection.cpp)

  void GetVersionInfo(std::int16_t& Result, Text& Exresult, bool& SupressError_, Text& Pass);
  /// An open port is kept, whatever PORT says. -1: no such port or it is taken; -2: it cannot be set up.
  void Connect_(Text PORT, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  Value DisConnect_(Text& PORT, std::int16_t& Result, Text& Exresult, bool& SupressError_);

  // ---- Receipt transactions (transactions.cpp)

  Value ItemSale(Text& itemDesc, double& itemQuan, double& itemUnitPrice, double& itemVatRate, std::int16_t& itemDep,
                 std::int16_t& Result, Text& Exresult, bool& SupressError_, Text& itemComment,
                 std::int16_t& itemCategory);
  Value ItemVoid(Text& itemDesc, double& itemQuan, double& itemUnitPrice, double& itemVatRate, std::int16_t& itemDep,
                 std::int16_t& Result, Text& Exresult, bool& SupressError_, Text& itemComment,
                 std::int16_t& itemCategory);
  Value ItemRefund(Text& itemDesc, double& itemQuan, double& itemUnitPrice, double& itemVatRate, std::int16_t& itemDep,
                   std::int16_t& Result, Text& Exresult, bool& SupressError_, Text& itemComment,
                   std::int16_t& itemCategory);
  std::shared_ptr<clsAdjust> adjustment(bool& onLastItem);
  Value Payment(std::int16_t& paymentNumber, Text& paymentDesc, double& paymentAmount, std::int16_t& eftposNum,
                std::int16_t& eftposType, std::int16_t& Result, Text& Exresult, bool& SupressError_, Text& paymentDesc2,
                bool& bReadEJ, bool& inPrePayment);
  Value FeedPaper(std::int16_t& Lines_, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  Value commentPrinterPrint(Text& CommentText_, std::int16_t& Size_, std::int16_t& Result, Text& Exresult,
                            bool& SupressError_);
  Value commentDisplayPrint(std::int16_t& lineNumber, Text& CommentText_, std::int16_t& Result, Text& Exresult,
                            bool& SupressError_);
  Value DrawerOpen(std::int16_t& Result, Text& Exresult, bool& SupressError_);
  Value CutPaper(bool& Full_, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  Value executeCashIn(double& Amount, Text& cashInDesc, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  Value executeCashOut(double& Amount, Text& cashOutDesc, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  Value VoidReceipt(std::int16_t& Result, Text& Exresult, bool& SupressError_);

  // ---- Reports (reports.cpp). The Z report and its reprint never show the box of a device error.

  /// Closes the fiscal day once its journal is on the disk; the device is asked for the journal up to three times, with
  /// pauses of three seconds. Without the journal nothing is closed: the box and the outcome tell it, but to a caller
  /// with SupressError_ the missing report alone. A file error raises typeMismatch.
  Value issueZReport(std::int16_t& Result, Text& Exresult, bool& SupressError_);
  /// The last Z report once more; the whole closing when the device has a journal that was not taken yet.
  Value issueZReprintReport(std::int16_t& Result, Text& Exresult, bool& SupressError_);
  Value issueXReport(std::int16_t& Result, Text& Exresult, bool& SupressError_);

  // ---- Reads (reads.cpp). A record and the outputs change only when Result is 0; a reply with fewer fields than are
  // wanted raises badIndex after the fields before the gap were taken.

  Value getDate(Text& d, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  Value getTime(Text& d, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  Value getSerialNumber(Text& sN, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  Value getHeader(Text& line1, std::int16_t& line1Size, Text& line2, std::int16_t& line2Size, Text& line3,
                  std::int16_t& line3Size, Text& line4, std::int16_t& line4Size, Text& line5, std::int16_t& line5Size,
                  std::int16_t& Result, Text& Exresult, bool& SupressError_);
  Value getFooter(Text& line1, std::int16_t& line1Size, Text& line2, std::int16_t& line2Size, Text& line3,
                  std::int16_t& line3Size, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  Value getVatCategories(double& VatA, double& VatB, double& VatC, double& VatD, double& VatE, std::int16_t& Result,
                         Text& Exresult, bool& SupressError_);
  void transactionTotals(clsTransTotal& c, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  void getSalesPerDepartment(clsAccumulator& c, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  void getSalesPerCategory(clsAccumulator& c, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  void getDailyTotals(clsDailyAcc& c, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  void settingsRead(clsParam& c, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  std::shared_ptr<clsStatus> StatusRead();
  void printerStatusRead(std::int16_t& Result, Text& Exresult, bool& SupressError_);

  // ---- Configuration (configuration.cpp). Ranges are the device's business: it answers with its code.

  Value setHeader(Text& line1, std::int16_t& line1Size, Text& line2, std::int16_t& line2Size, Text& line3,
                  std::int16_t& line3Size, Text& line4, std::int16_t& line4Size, Text& line5, std::int16_t& line5Size,
                  std::int16_t& Result, Text& Exresult, bool& SupressError_);
  Value setFooter(Text& line1, std::int16_t& line1Size, Text& line2, std::int16_t& line2Size, Text& line3,
                  std::int16_t& line3Size, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  Value setTempFooter(Text& line1, Text& line2, Text& line3, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  /// Sends nothing when the device has these rates already; Exresult tells so.
  Value setVatCategories(double& VatA, double& VatB, double& VatC, double& VatD, double& VatE, std::int16_t& Result,
                         Text& Exresult, bool& SupressError_);
  void setDepartment(std::int16_t& depID, Text& depDescription, std::int16_t& depCategory, std::int16_t& Result,
                     Text& Exresult, bool& SupressError_);
  void setCategory(std::int16_t& catID, Text& catDescription, std::int16_t& Result, Text& Exresult,
                   bool& SupressError_);
  void settingsWrite(clsParam& c, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  /// Prints the number in any case; the outcome is that of the last paper feed.
  void setVATNumber(Text& sVat, std::int16_t& Result, Text& Exresult, bool& SupressError_, Text& Pass);
  /// The tax authority's server. sWeb: data URL, "|" and QR URL.
  void setServer(std::uint8_t bActiveSend, Text sWeb, Text sPort, Text sAES, std::int16_t& Result, Text& Exresult,
                 bool& SupressError_, Text& Pass);
  void getServer(std::uint8_t& bActiveSend, Text& sWeb, Text& sPort, Text& sAES, std::int16_t& Result, Text& Exresult,
                 bool& SupressError_, Text& Pass);
  /// The device's commands for these are not known, so nothing is sent and they are refused as the device refuses what
  /// it does not know.
  void setTaxCardNumber(Text& nTaxCard, std::int16_t& Result, Text& Exresult, bool& SupressError_, Text& Pass);
  Value sentBitmapData(Text& BMPfileName, std::int16_t& BitmapID, std::int16_t& Result, Text& Exresult,
                       bool& SupressError_);
  Value setReceiptBitmap(std::int16_t& BitmapID, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  Value setReceiptBitmapSize(std::int16_t& sizeOf, std::int16_t& Result, Text& Exresult, bool& SupressError_);

  // ---- Card terminals (eftpos.cpp), as the device keeps them. eftId picks the terminal. What is written has one byte
  // for eftEnabled and eftMDW together: a sum beyond it raises overflow, and nothing is sent.

  void eftRead(clsEFT& c, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  void eftWrite(clsEFT& c, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  void eftdel(clsEFT& c, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  /// Has the device try the terminal.
  void eftTest(clsEFT& c, std::int16_t& Result, Text& Exresult, bool& SupressError_);

 private:
  class Stopwatch;
  struct Outcome {
    std::int16_t& Result;
    Text& Exresult;
    bool& SupressError_;
  };

  std::string exchangeSerial(const std::string& frame, std::int16_t& Result, Text& Exresult, std::int16_t timeOut);
  bool exchangeNetwork(const std::string& frame, std::int16_t& Result, Text& Exresult, std::string& reply);
  std::string answerToEnquiry();
  std::string collectDatagrams();
  bool waitForDatagram(double seconds);
  Text complete(std::int16_t& Result, Text& Exresult);
  bool writeBytes(const std::string& bytes);
  std::string readBytes();

  void decodeReply(Text& Exresult);
  /// False, and nothing is shown, when a wait is under way already. The outcome is in lastResult and lastexResult.
  bool showDeviceWaitDialog(std::int16_t code, const Text& message);
  bool deviceIsStillBusy(platform::WaitText& text);
  void report(std::int16_t Result, const Text& Exresult, bool SupressError_);
  void send(const Text& command, std::int16_t& Result, Text& Exresult, bool& SupressError_, std::int16_t timeOut = 0);

  void itemLine(TextView code, const Text& itemDesc, double itemQuan, double itemUnitPrice, double itemVatRate,
                std::int16_t itemDep, std::int16_t& Result, Text& Exresult, bool& SupressError_,
                const Text& itemComment, std::int16_t itemCategory);
  bool isPaid(std::int16_t& Result, Text& Exresult, bool& SupressError_);
  void cashDocument(TextView code, double amount, const Text& description, std::int16_t& Result, Text& Exresult,
                    bool& SupressError_);

  bool journalStepFails(Text& message);
  static void tellJournalFailure(const Text& message, std::int16_t& Result, Text& Exresult);
  bool journalIsTaken(Text& message);

  void read(const Text& command, const Outcome& outcome, const std::function<void(const ReplyFields&)>& fill);
  clsStatus& refreshedStatus();

  void endServerDialogue();
  void refuseUnknown(std::int16_t& Result, Text& Exresult, bool SupressError_);

  Text lastReply_;
  /// State as of the last reply's status bytes.
  struct {
    bool dayOpen, transactionOpen, inPayment, flashNearFull;
  } flags_{};
  std::shared_ptr<clsStatus> status_;
  std::shared_ptr<FiscalJournal> journal_;
  /// The last one read from this device.
  Text serialNumber_;
  /// Whether the last wait for the device saw a card payment under way.
  bool waitSawCardPayment_ = false;
};

}  // namespace mirvane
