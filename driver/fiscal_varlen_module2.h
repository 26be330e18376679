#pragma once

#include <cstdint>
#include <string>

#include "interface/cls_status.h"
#include "support/price_adjustments.h"

namespace mirvane {

struct clsTransTotal;

/// The driver of the second-generation device. One source file per subject: link, errors, connection, transactions,
/// reads. What each member of the driver interface does for the caller is told there; see interface/driver_interface.h.
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
  /// is repeated. Returns the reply, empty when there was none. Shows no box of its own but, when SupressError_ is
  /// False, the one about characters that the device does not know; the network endpoint shows its boxes to everybody.
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

  // ---- Reads (reads.cpp). A record and the outputs change only when Result is 0; a reply with fewer fields than are
  // wanted raises badIndex after the fields before the gap were taken.

  Value getDate(Text& d, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  Value getTime(Text& d, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  Value getSerialNumber(Text& sN, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  void transactionTotals(clsTransTotal& c, std::int16_t& Result, Text& Exresult, bool& SupressError_);
  std::shared_ptr<clsStatus> StatusRead();
  void printerStatusRead(std::int16_t& Result, Text& Exresult, bool& SupressError_);

 private:
  class Stopwatch;
  struct Outcome {
    std::int16_t& Result;
    Text& Exresult;
    bool& SupressError_;
  };

  std::string exchangeSerial(const std::string& frame, std::int16_t& Result, Text& Exresult, std::int16_t timeOut);
  bool exchangeNetwork(const std::string& frame, std::int16_t& Result, Text& Exresult, std::string& reply);
  std::string collectDatagrams();
  bool waitForDatagram(double seconds);
  Text complete(const std::string& reply, std::int16_t& Result, Text& Exresult);
  bool writeBytes(const std::string& bytes);
  std::string readBytes();

  void decodeReply(Text& Exresult);
  void report(std::int16_t Result, const Text& Exresult, bool SupressError_);
  void send(const Text& command, std::int16_t& Result, Text& Exresult, bool& SupressError_, std::int16_t timeOut = 0);

  void itemLine(TextView code, const Text& itemDesc, double itemQuan, double itemUnitPrice, double itemVatRate,
                std::int16_t itemDep, std::int16_t& Result, Text& Exresult, bool& SupressError_,
                const Text& itemComment, std::int16_t itemCategory);
  void cashDocument(TextView code, double amount, const Text& description, std::int16_t& Result, Text& Exresult,
                    bool& SupressError_);

  template <class Fill>
  void read(const Text& command, const Outcome& outcome, Fill fill);
  clsStatus& refreshedStatus();

  Text lastReply_;
  /// State as of the last reply's status bytes.
  struct {
    bool dayOpen, transactionOpen, inPayment, flashNearFull;
  } flags_{};
  std::shared_ptr<clsStatus> status_;
  /// The last one read from this device.
  Text serialNumber_;
};

}  // namespace mirvane
