#include "facade/fiscal_trevik_module.h"

#include "interface/door.h"
#include "interface/driver_interface.h"
#include "state/module_state.h"
#include "support/price_adjustments.h"

namespace mirvane {
namespace {

// The row of a member that passes all its arguments on, as references, to the current driver's member of the name `to`.
template <class Signature>
Member forwardTo(std::string_view to, const Contract<Signature>& contract) {
  Member row = contract.row({});
  row.implementation = [to, result = row.result](Object& /*self*/, CallArguments& arguments) {
    return convertedTo(result, driverOrRefusal()->invoke(to, ClassInfo::Access::callOrRead, arguments.references()));
  };
  return row;
}

template <class... Signatures>
void forward(ClassBuilder<fiscalTrevikModule>& table, const Contract<Signatures>&... members) {
  (table.add(forwardTo(members.name, members)), ...);
}

// As forward, where the facade's name for the driver's member is another one.
template <class Signature>
void forwardAs(ClassBuilder<fiscalTrevikModule>& table, std::string_view name, const Contract<Signature>& member) {
  Member row = forwardTo(member.name, member);
  row.name = name;
  table.add(std::move(row));
}

// The row of a member that does nothing and leaves every argument as it is.
template <class Signature>
Member idle(const Contract<Signature>& contract) {
  Member row = contract.row([](Object& /*self*/, CallArguments& /*arguments*/) { return Value(); });
  row.assigns = false;
  return row;
}

}  // namespace

fiscalTrevikModule::fiscalTrevikModule() {
  ++moduleState().facades;
  startRecord();
}

fiscalTrevikModule::~fiscalTrevikModule() { fiscalTrevikModule::released(); }

// At once, though the object lives on: a Connect_ of another one that comes now keeps the driver.
void fiscalTrevikModule::released() {
  if (!std::exchange(hasEnded_, true)) endFacade();
}

FISCAL_TYPES fiscalTrevikModule::getFiscalType() { return moduleState().fiscalType; }

void fiscalTrevikModule::Connect_(Text PORT, Outcome outcome) {
  driverOn(PORT)->call("Connect_", PORT, outcome.Result, outcome.Exresult, outcome.SupressError_);
}

Value fiscalTrevikModule::DisConnect_(Text& PORT, Outcome outcome) {
  Value result = driverOn(PORT)->call("DisConnect_", PORT, outcome.Result, outcome.Exresult, outcome.SupressError_);
  releaseDriver();
  return result;
}

std::shared_ptr<clsStatus> fiscalTrevikModule::StatusRead() {
  const ObjectPtr driver = moduleState().currentDriver;
  if (driver == nullptr) return std::make_shared<clsStatus>();
  return std::dynamic_pointer_cast<clsStatus>(convertTo<ObjectPtr>(driver->call("StatusRead")));
}

std::shared_ptr<clsEFT> fiscalTrevikModule::clsEFTpos() {
  if (eftpos_ == nullptr) eftpos_ = std::make_shared<clsEFT>();
  return eftpos_;
}

void fiscalTrevikModule::activateDebug() { setTrace(true); }

void fiscalTrevikModule::DeactivateDebug() { setTrace(false); }

const ClassInfo& fiscalTrevikModule::describe() {
  static const ClassInfo info = [] {
    using namespace contract;
    using Facade = fiscalTrevikModule;
    static const Contract<std::shared_ptr<clsAdjust>(bool&)> kAdjustment{"adjustment", MemberKind::get,
                                                                         parametersOf({{"onLastItem"}})};
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
    table.add(idle(setDepartment));
    forward(table, setCategory, transactionTotals, getSalesPerDepartment, getSalesPerCategory, getDailyTotals);
    table.implement(contract::StatusRead, &Facade::StatusRead);
    forward(table, printerStatusRead, setVATNumber);
    forwardAs(table, "setServerSettings", setServer);
    forwardAs(table, "getServerSettings", getServer);
    forward(table, setTaxCardNumber);
    table.readOnly("clsEFTpos", &Facade::clsEFTpos)
        .method("activateDebug", &Facade::activateDebug)
        .method("DeactivateDebug", &Facade::DeactivateDebug);
    return throughDoor(table.build(), contract::Connect_.name);
  }();
  return info;
}

}  // namespace mirvane
