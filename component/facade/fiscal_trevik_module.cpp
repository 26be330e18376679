#include "facade/fiscal_trevik_module.h"

#include "interface/door.h"
#include "interface/members.h"
#include "link/open_port.h"
#include "state/module_state.h"
#include "support/price_adjustments.h"

namespace mirvane {
namespace {

using contract::AnyMember;

// The facade always passes all arguments on, so the driver gets the facade's defaults.
constexpr auto kPayment = method<contract::CardPayment>(
    "Payment", {"paymentNumber", "paymentDesc", "paymentAmount", "eftposNum", "eftposType", optional("paymentDesc2"),
                optional("bReadEJ", true), optional("inPrePayment", false)});
constexpr Described<std::shared_ptr<clsAdjust>(bool&)> kAdjustmentProperty{"adjustment", MemberKind::get,
                                                                           std::array<Parameter, 1>{"onLastItem"}};

// The body that passes all arguments, as references, to the current driver's member `to`.
Body forwardTo(std::string_view to, const Type& result) {
  return [to, result](Object& /*self*/, CallArguments& arguments) {
    return convertedTo(result, driverOrRefusal()->invoke(to, ClassInfo::Access::callOrRead, arguments.references()));
  };
}

template <class S>
Member forwarded(const Described<S>& described) {
  Member row = described.row();
  row.body = forwardTo(row.name, row.result);
  return row;
}

Member forwarded(const AnyMember& member) {
  Member row = member.withBody(forwardTo(member.name, member.result));
  row.name = member.facadeName();
  return row;
}

// The row of a member that does nothing and leaves all arguments unchanged.
Member idle(const AnyMember& member) {
  Member row = member.withBody([](Object& /*self*/, CallArguments& /*arguments*/) { return Value(); });
  row.assigns = false;
  return row;
}

}  // namespace

fiscalTrevikModule::fiscalTrevikModule() {
  ++moduleState().facades;
  startRecord();
}

fiscalTrevikModule::~fiscalTrevikModule() { fiscalTrevikModule::released(); }

// At once, even if the object lives on: a later Connect_ of another object keeps its driver.
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
    using Facade = fiscalTrevikModule;
    ClassBuilder<Facade> table;
    table.readOnly("getFiscalType", &Facade::getFiscalType).at(2);
    table.implement<contract::Connect_>(&Facade::Connect_).implement<contract::DisConnect_>(&Facade::DisConnect_);
    table.add(forwarded(kAdjustmentProperty)).at(10);
    table.add(forwarded(kPayment)).at(11);
    table.add(idle(contract::setDepartment)).implement<contract::StatusRead>(&Facade::StatusRead);
    table.readOnly("clsEFTpos", &Facade::clsEFTpos).at(54);
    table.method("activateDebug", &Facade::activateDebug).at(55);
    table.method("DeactivateDebug", &Facade::DeactivateDebug).at(56);
    for (const AnyMember& member : contract::kMembers) {
      if (member.places.facade == 0) continue;
      if (table.find(member.facadeName()) == nullptr) table.add(forwarded(member));
      Member& row = *table.find(member.facadeName());
      row.dispatchId = member.places.facade;
      row.sentence = member.sentence;
    }
    return throughDoor(table.build(), contract::Connect_.name, [] { return thePort().isOpen(); });
  }();
  return info;
}

}  // namespace mirvane
