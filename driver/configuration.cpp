#include <algorithm>

#include "driver/command.h"
#include "driver/device_errors.h"
#include "driver/fiscal_varlen_module2.h"
#include "interface/cls_param.h"
#include "support/message_catalogue.h"

namespace mirvane {
namespace {

constexpr std::size_t kGroupName = 35;
constexpr std::size_t kPrinterName = 8;
constexpr std::size_t kCashierName = 20;

constexpr std::int16_t kUnknownRequest = 6;

// The size of the confirmation line, and the paper behind it, so that the line can be torn off.
constexpr std::int16_t kVatNumberSize = 2;
constexpr std::int16_t kVatNumberFeed = 8;

// The device keeps "~" for "/" in addresses, since "/" ends a field.
Text stored(Text url) {
  std::replace(url.begin(), url.end(), u'/', u'~');
  return url;
}

// The device's answer about the server: active, data URL, port, key, three empty fields and QR URL, from the third
// piece on. A device that gives the URLs back with "/" inside makes more pieces of it: the data URL then ends with the
// first one that ends in ".php" and has a port behind it. Where there is none, it is one piece.
struct ServerReply {
  static constexpr std::size_t kActive = 3;
  static constexpr std::size_t kUrl = 4;

  explicit ServerReply(const Text& reply) : pieces(split(reply, u'/')) {
    const auto isNumber = [](TextView piece) {
      return !piece.empty() && piece.find_first_not_of(u"0123456789") == TextView::npos;
    };
    for (std::size_t i = kUrl; i + 1 < pieces.size(); ++i) {
      if (!pieces[i].ends_with(u".php") || !isNumber(pieces[i + 1])) continue;
      port = i + 1;
      break;
    }
    if (pieces.size() < port + 3) throw AutomationError(AutomationCode::badIndex);
  }

  Text urls() const { return joined(kUrl, port) + u"|" + joined(port + 5, pieces.size() - 1); }

  std::vector<Text> pieces;
  std::size_t port = kUrl + 1;

 private:
  Text joined(std::size_t begin, std::size_t end) const {
    Text url;
    for (std::size_t i = begin; i < end; ++i) url += (i == begin ? u"" : u"/") + pieces[i];
    std::replace(url.begin(), url.end(), u'~', u'/');
    return url;
  }
};

}  // namespace

Value FiscalVarlenModule2::setHeader(Text& line1, std::int16_t& line1Size, Text& line2, std::int16_t& line2Size,
                                     Text& line3, std::int16_t& line3Size, Text& line4, std::int16_t& line4Size,
                                     Text& line5, std::int16_t& line5Size, std::int16_t& Result, Text& Exresult,
                                     bool& SupressError_) {
  const Text command = Command(u"H/")
                           .integer(line1Size)
                           .text(line1)
                           .integer(line2Size)
                           .text(line2)
                           .integer(line3Size)
                           .text(line3)
                           .integer(line4Size)
                           .text(line4)
                           .integer(line5Size)
                           .text(line5)
                           .str();
  send(command, Result, Exresult, SupressError_);
  return {};
}

Value FiscalVarlenModule2::setFooter(Text& line1, std::int16_t& line1Size, Text& line2, std::int16_t& line2Size,
                                     Text& line3, std::int16_t& line3Size, std::int16_t& Result, Text& Exresult,
                                     bool& SupressError_) {
  const Text command =
      Command(u"Y/").integer(line1Size).text(line1).integer(line2Size).text(line2).integer(line3Size).text(line3).str();
  send(command, Result, Exresult, SupressError_);
  return {};
}

// The device takes the last line up to the command's end: this one command has no "/" there.
Value FiscalVarlenModule2::setTempFooter(Text& line1, Text& line2, Text& line3, std::int16_t& Result, Text& Exresult,
                                         bool& SupressError_) {
  send(Command(u"m/").text(line1).text(line2).str() + cleanText(line3), Result, Exresult, SupressError_);
  return {};
}

Value FiscalVarlenModule2::setVatCategories(double& VatA, double& VatB, double& VatC, double& VatD, double& VatE,
                                            std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  double a = 0;
  double b = 0;
  double c = 0;
  double d = 0;
  double e = 0;
  getVatCategories(a, b, c, d, e, Result, Exresult, SupressError_);
  if (Result != 0) return {};
  if (VatA == a && VatB == b && VatC == c && VatD == d && VatE == e) {
    Exresult = langMessage(message::kVatUnchanged);
    return {};
  }
  const Text command = Command(u"b/").amount(VatA).amount(VatB).amount(VatC).amount(VatD).amount(VatE).str();
  send(command, Result, Exresult, SupressError_);
  return {};
}

void FiscalVarlenModule2::setDepartment(std::int16_t& depID, Text& depDescription, std::int16_t& depCategory,
                                        std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  send(Command(u"d/").integer(depID).text(depDescription, kGroupName).integer(depCategory).str(), Result, Exresult,
       SupressError_);
}

void FiscalVarlenModule2::setCategory(std::int16_t& catID, Text& catDescription, std::int16_t& Result, Text& Exresult,
                                      bool& SupressError_) {
  send(Command(u"K/").integer(catID).text(catDescription, kGroupName).str(), Result, Exresult, SupressError_);
}

void FiscalVarlenModule2::settingsWrite(clsParam& c, std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  const Text command = Command(u"S/")
                           .integer(c.printerId)
                           .text(c.printerDescription, kPrinterName)
                           .text(c.cashierDesc, kCashierName)
                           .integer(c.printRECPluDepartment)
                           .integer(c.drawerOpenonTotal)
                           .integer(c.printREConNoSale)
                           .integer(c.printRECVATDetail)
                           .integer(c.printRECFooterComments)
                           .integer(c.printRECTopLogo)
                           .integer(c.printRECBottomLogo)
                           .integer(c.printerUSeCutter)
                           .integer(c.useLCDdisplay())
                           .str();
  send(command, Result, Exresult, SupressError_);
}

void FiscalVarlenModule2::setVATNumber(Text& sVat, std::int16_t& Result, Text& Exresult, bool& SupressError_,
                                       Text& Pass) {
  Text command = u"B/////////" + sVat + u"//////////";
  std::int16_t timeOut = 0;
  SendCommand_(command, Result, Exresult, SupressError_, Pass, timeOut);
  Text confirmation = u"VAT = " + sVat;
  std::int16_t size = kVatNumberSize;
  commentPrinterPrint(confirmation, size, Result, Exresult, SupressError_);
  std::int16_t lines = kVatNumberFeed;
  FeedPaper(lines, Result, Exresult, SupressError_);
}

void FiscalVarlenModule2::setServer(std::uint8_t bActiveSend, Text sWeb, Text sPort, Text sAES, std::int16_t& Result,
                                    Text& Exresult, bool& SupressError_, Text& Pass) {
  const std::size_t bar = std::min(sWeb.find(u'|'), sWeb.size());
  Text command = Command(u"]/")
                     .integer(bActiveSend)
                     .verbatim(stored(sWeb.substr(0, bar)))
                     .verbatim(sPort)
                     .verbatim(sAES)
                     .empty()
                     .empty()
                     .empty()
                     .verbatim(stored(sWeb.substr(std::min(bar + 1, sWeb.size()))))
                     .str();
  std::int16_t timeOut = 0;
  SendCommand_(command, Result, Exresult, SupressError_, Pass, timeOut);
  endServerDialogue();
}

void FiscalVarlenModule2::getServer(std::uint8_t& bActiveSend, Text& sWeb, Text& sPort, Text& sAES,
                                    std::int16_t& Result, Text& Exresult, bool& SupressError_, Text& Pass) {
  Text command = u",/0/";
  std::int16_t timeOut = 0;
  SendCommand_(command, Result, Exresult, SupressError_, Pass, timeOut);
  if (Result != 0) return;
  const Text reply = lastReply_;
  endServerDialogue();  // first, or a reply that is too short would leave it open
  const ServerReply server(reply);
  bActiveSend = convertTo<std::uint8_t>(Value(leadingNumber(server.pieces[ServerReply::kActive])));
  sWeb = server.urls();
  sPort = server.pieces[server.port];
  sAES = server.pieces[server.port + 1];
}

void FiscalVarlenModule2::endServerDialogue() {
  std::int16_t result = 0;
  Text text;
  bool silent = true;
  send(u",/1/", result, text, silent);
}

void FiscalVarlenModule2::refuseUnknown(std::int16_t& Result, Text& Exresult, bool SupressError_) {
  Result = kUnknownRequest;
  Exresult = deviceErrorText(kUnknownRequest);
  report(Result, Exresult, SupressError_);
}

void FiscalVarlenModule2::setTaxCardNumber(Text& /*nTaxCard*/, std::int16_t& Result, Text& Exresult,
                                           bool& SupressError_, Text& /*Pass*/) {
  refuseUnknown(Result, Exresult, SupressError_);
}

Value FiscalVarlenModule2::sentBitmapData(Text& /*BMPfileName*/, std::int16_t& /*BitmapID*/, std::int16_t& Result,
                                          Text& Exresult, bool& SupressError_) {
  refuseUnknown(Result, Exresult, SupressError_);
  return {};
}

Value FiscalVarlenModule2::setReceiptBitmap(std::int16_t& /*BitmapID*/, std::int16_t& Result, Text& Exresult,
                                            bool& SupressError_) {
  refuseUnknown(Result, Exresult, SupressError_);
  return {};
}

Value FiscalVarlenModule2::setReceiptBitmapSize(std::int16_t& /*sizeOf*/, std::int16_t& Result, Text& Exresult,
                                                bool& SupressError_) {
  refuseUnknown(Result, Exresult, SupressError_);
  return {};
}

}  // namespace mirvane
