#include "driver/fiscal_varlen_module2.h"
#include "interface/driver_interface.h"

namespace mirvane {

const ClassInfo& FiscalVarlenModule2::describe() {
  static const ClassInfo info = [] {
    using namespace contract;
    using Driver = FiscalVarlenModule2;
    // Longest logo line of this device, in characters.
    constexpr std::int16_t kLogoLine = 48;
    ClassBuilder<Driver> table;
    table.method("SendData", &Driver::SendData, {"strData"})
        .method("recData", &Driver::recData)
        .method("availData", &Driver::availData)
        .method("clearBuffer", &Driver::clearBuffer)
        .property("lastResult", &Driver::lastResult)
        .property("lastexResult", &Driver::lastexResult)
        .implement(contract::lastReply, &Driver::lastReply)
        .method("Send_", &Driver::Send_,
                {"CmdString", "Result", "Exresult", "SupressError_", "Pass", optional("timeOut")})
        .method("SendCommand_", &Driver::SendCommand_,
                {"CmdString", "Result", "Exresult", "SupressError_", "Pass", optional("timeOut")})
        .implement(contract::GetVersionInfo, &Driver::GetVersionInfo)
        .implement(contract::Connect_, &Driver::Connect_)
        .implement(contract::DisConnect_, &Driver::DisConnect_)
        .implement(contract::ItemSale, &Driver::ItemSale)
        .implement(contract::ItemVoid, &Driver::ItemVoid)
        .implement(contract::ItemRefund, &Driver::ItemRefund)
        .method("adjustment", &Driver::adjustment, {"onLastItem"})
        .implement(contract::DriverPayment, &Driver::Payment)
        .implement(contract::FeedPaper, &Driver::FeedPaper)
        .implement(contract::commentPrinterPrint, &Driver::commentPrinterPrint)
        .implement(contract::commentDisplayPrint, &Driver::commentDisplayPrint)
        .implement(contract::issueZReport, &Driver::issueZReport)
        .implement(contract::issueZReprintReport, &Driver::issueZReprintReport)
        .implement(contract::issueXReport, &Driver::issueXReport)
        .implement(contract::DrawerOpen, &Driver::DrawerOpen)
        .implement(contract::CutPaper, &Driver::CutPaper)
        .implement(contract::executeCashIn, &Driver::executeCashIn)
        .implement(contract::executeCashOut, &Driver::executeCashOut)
        .implement(contract::VoidReceipt, &Driver::VoidReceipt)
        .implement(contract::getDate, &Driver::getDate)
        .implement(contract::getTime, &Driver::getTime)
        .implement(contract::getSerialNumber, &Driver::getSerialNumber)
        .implement(contract::getHeader, &Driver::getHeader)
        .implement(contract::setHeader, &Driver::setHeader)
        .implement(contract::getFooter, &Driver::getFooter)
        .implement(contract::setFooter, &Driver::setFooter)
        .implement(contract::setTempFooter, &Driver::setTempFooter)
        .implement(contract::getVatCategories, &Driver::getVatCategories)
        .implement(contract::setVatCategories, &Driver::setVatCategories)
        .implement(contract::sentBitmapData, &Driver::sentBitmapData)
        .implement(contract::setReceiptBitmap, &Driver::setReceiptBitmap)
        .implement(contract::setReceiptBitmapSize, &Driver::setReceiptBitmapSize)
        .implement(contract::settingsRead, &Driver::settingsRead)
        .implement(contract::settingsWrite, &Driver::settingsWrite)
        .implement(contract::setDepartment, &Driver::setDepartment)
        .implement(contract::setCategory, &Driver::setCategory)
        .implement(contract::transactionTotals, &Driver::transactionTotals)
        .implement(contract::getSalesPerDepartment, &Driver::getSalesPerDepartment)
        .implement(contract::getSalesPerCategory, &Driver::getSalesPerCategory)
        .implement(contract::getDailyTotals, &Driver::getDailyTotals)
        .implement(contract::StatusRead, &Driver::StatusRead)
        .implement(contract::printerStatusRead, &Driver::printerStatusRead)
        .implement(contract::setVATNumber, &Driver::setVATNumber)
        .implement(contract::setTaxCardNumber, &Driver::setTaxCardNumber)
        .implement(contract::setServer, &Driver::setServer)
        .implement(contract::getServer, &Driver::getServer)
        .implement(contract::eftRead, &Driver::eftRead)
        .implement(contract::eftWrite, &Driver::eftWrite)
        .implement(contract::eftTest, &Driver::eftTest)
        .implement(contract::eftdel, &Driver::eftdel)
        .implement(contract::logoLineDescLength, [](Driver& /*self*/) { return kLogoLine; })
        .implement(contract::bFixableError, &Driver::isErrorFixable)
        .implement(contract::isErrorFixable, &Driver::isErrorFixable)
        .implement(contract::bShouldRetry, &Driver::bShouldRetry)
        .implement(contract::isCriticalError, &Driver::isCriticalError);
    return table.build();
  }();
  return info;
}

}  // namespace mirvane
