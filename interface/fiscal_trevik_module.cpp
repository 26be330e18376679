#include "interface/fiscal_trevik_module.h"

#include "interface/driver_interface.h"
#include "interface/module_state.h"
#include "support/price_adjustments.h"

namespace mirvane {
namespace {

template <class R>
R resultAs(const Value& result) {
  if constexpr (std::is_void_v<R>) {
    return;
  } else {
    return convertTo<R>(result);
  }
}

template <class R>
requires detail::ObjectClass<typename R::element_type> R resultAs(const Value& result) {
  return detail::asClass<typename R::element_type>(result);
}

// Passes a member on to the current driver's member of the name `to`, with references to the caller's own variables.
template <class R, class... A>
auto forwardTo(std::string_view to, const Contract<R(A...)>& /*signature*/) {
  return [to](fiscalTrevikModule& /*self*/, A... arguments) -> R {
    return resultAs<R>(currentDriver()->call(to, arguments...));
  };
}

template <class... Signatures>
void forward(ClassBuilder<fiscalTrevikModule>& table, const Contract<Signatures>&... members) {
  (table.implement(members, forwardTo(members.name, members)), ...);
}

// As forward, where the facade's name for the driver's member is another one.
template <class Signature>
void forwardAs(ClassBuilder<fiscalTrevikModule>& table, std::string_view name, Contract<Signature> member) {
  const std::string_view to = member.name;
  member.name = name;
  table.implement(member, forwardTo(to, member));
}

}  // namespace

fiscalTrevikModule::~fiscalTrevikModule() { releaseDriver(); }

FISCAL_TYPES fiscalTrevikModule::getFiscalType() { return moduleState().fiscalType; }

void fiscalTrevikModule::Connect_(Text PORT, std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  getCurrentDriver(PORT)->call("Connect_", PORT, Result, Exresult, SupressError_);
}

Value fiscalTrevikModule::DisConnect_(Text& PORT, std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  Value result = getCurrentDriver(PORT)->call("DisConnect_", PORT, Result, Exresult, SupressError_);
  releaseDriver();
  return result;
}

std::shared_ptr<clsStatus> fiscalTrevikModule::StatusRead() {
  const ObjectPtr driver = moduleState().currentDriver;
  if (driver == nullptr) return std::make_shared<clsStatus>();
  return detail::asClass<clsStatus>(driver->call("StatusRead"));
}

void fiscalTrevikModule::setDepartment(std::int16_t& /*depID*/, Text& /*depDescription*/, std::int16_t& /*depCategory*/,
                                       std::int16_t& /*Result*/, Text& /*Exresult*/, bool& /*SupressError_*/) {}

std::shared_ptr<clsEFT> fiscalTrevikModule::clsEFTpos() {
  if (eftpos_ == nullptr) eftpos_ = std::make_shared<clsEFT>();
  return eftpos_;
}

void fiscalTrevikModule::activateDebug() { moduleState().traceActive = true; }

void fiscalTrevikModule::DeactivateDebug() { moduleState().traceActive = false; }

const ClassInfo& fiscalTrevikModule::describe() {
  static const ClassInfo info = [] {
    using namespace contract;
    using Facade = fiscalTrevikModule;
    static const Contract<std::shared_ptr<clsAdjust>(Flag)> kAdjustment{"adjustment", MemberKind::get, {"onLastItem"}};
    // The facade always passes all arguments on, so its own defaults reach the driver.
    static const auto kPayment =
        method<CardPayment>("Payment", kCardPaymentParameters,
                            {optional("paymentDesc2"), optional("bReadEJ", true), optional("inPrePayment", false)});
    ClassBuilder<Facade> table;
    forward(table, logoLineDescLength);
    table.readOnly("getFiscalType", &Facade::getFiscalType);
    forward(table, SendCommand_, GetVersionInfo);
    table.implement(contract::Connect_, &Facade::Connect_).implement(contract::DisConnect_, &Facade::DisConnect_);
    forward(table, ItemSale, ItemVoid, ItemRefund, kAdjustment, kPayment, FeedPaper, commentPrinterPrint,
            commentDisplayPrint, issueZReport, issueZReprintReport, issueXReport, DrawerOpen, CutPaper, executeCashIn,
            executeCashOut, VoidReceipt, getDate, getTime, getSerialNumber, getHeader, setHeader, getFooter, setFooter,
            setTempFooter, getVatCategories, setVatCategories, sentBitmapData, setReceiptBitmap, setReceiptBitmapSize,
            settingsRead, settingsWrite, eftRead);
    forwardAs(table, "eftSet", eftWrite);
    forward(table, eftTest, eftdel);
    table.implement(contract::setDepartment, &Facade::setDepartment);
    forward(table, setCategory, transactionTotals, getSalesPerDepartment, getSalesPerCategory, getDailyTotals);
    table.implement(contract::StatusRead, &Facade::StatusRead);
    forward(table, printerStatusRead, setVATNumber);
    forwardAs(table, "setServerSettings", setServer);
    forwardAs(table, "getServerSettings", getServer);
    forward(table, setTaxCardNumber);
    table.readOnly("clsEFTpos", &Facade::clsEFTpos)
        .method("activateDebug", &Facade::activateDebug)
        .method("DeactivateDebug", &Facade::DeactivateDebug);
    return table.build();
  }();
  return info;
}

}  // namespace mirvane
