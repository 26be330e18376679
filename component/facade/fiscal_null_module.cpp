#include "facade/fiscal_null_module.h"

#include <algorithm>

#include "interface/door.h"
#include "interface/members.h"
#include "link/port.h"
#include "state/message_catalogue.h"
#include "state/module_state.h"

namespace mirvane {
namespace {

void clear(clsTransTotal& c) {
  c.VatA = c.VatB = c.VatC = c.VatD = c.VatE = c.receiptTotalAmt = 0;
  c.receiptNumber = 0;
}

void clear(clsAccumulator& c) {
  c.Desc.clear();
  c.Count = c.Amount = 0;
}

void clear(clsDailyAcc& c) {
  c.VatA = c.VatB = c.VatC = c.VatD = c.VatE = c.VatSum = 0;
  c.LegalReceiptCount = c.illLegalReceiptCount = 0;
  c.amtVoid = c.amtRefund = c.amtCancel = 0;
  c.amtPaymentType1 = c.amtPaymentType2 = c.amtPaymentType3 = 0;
  c.amtDiscount = c.amtMarkUP = 0;
}

template <class Record>
bool clearIf(const ObjectPtr& object) {
  auto* const record = dynamic_cast<Record*>(object.get());
  if (record != nullptr) clear(*record);
  return record != nullptr;
}

// The body that refuses a member, and clears the record that the member would fill.
Body refusal(const contract::AnyMember& member) {
  const auto result = std::ranges::find(member.parameters, Outcome::kNames.front().name, &Parameter::name);
  if (result == member.parameters.end()) {
    throw std::logic_error("the null driver needs a body of its own for " + std::string(member.name) +
                           ", which reports no Result");
  }
  const auto at = static_cast<std::size_t>(result - member.parameters.begin());
  const bool clears = member.withoutDevice == contract::WithoutDevice::kCleared;
  return [at, clears](Object& /*self*/, CallArguments& arguments) -> Value {
    if (clears) {
      const auto record = arguments.get<ObjectPtr&>(0);
      clearIf<clsTransTotal>(record) || clearIf<clsAccumulator>(record) || clearIf<clsDailyAcc>(record);
    }
    fiscalNullModule::refuse(Expanded<Outcome>::from(arguments, at));
    return {};
  };
}

}  // namespace

void fiscalNullModule::refuse(Outcome outcome) {
  outcome.set({link_result::kNoDevice, link_result::kNoDeviceText});
  if (outcome.SupressError_) return;
  showBox(outcome.Exresult, platform::kInformationSystemModal, langMessage(message::kBoxTitle));
}

Value fiscalNullModule::DisConnect_(Text& /*PORT*/, Outcome outcome) {
  outcome.Result = closePort();
  return {};
}

std::shared_ptr<clsStatus> fiscalNullModule::StatusRead() {
  if (status_ == nullptr) status_ = std::make_shared<clsStatus>();
  clsStatus& s = *status_;
  s.isFiscalFull = s.isDayOpen = s.isTransactionOpen = s.isInPayment = s.isInPaidOut = s.isInROA = false;
  s.isFlashNearFull = s.isFiscalNearFull = false;
  s.isEuro = true;
  return status_;
}

const ClassInfo& fiscalNullModule::describe() {
  static const ClassInfo info = [] {
    using Self = fiscalNullModule;
    const auto no = [](Self& /*self*/, std::int16_t& /*iErr*/) { return false; };
    ClassBuilder<Self> table;
    table.implement<contract::DisConnect_>(&Self::DisConnect_)
        .implement<contract::StatusRead>(&Self::StatusRead)
        .implement<contract::logoLineDescLength>([](Self& /*self*/) { return std::int16_t{0}; })
        .implement<contract::bFixableError>(no)
        .implement<contract::isErrorFixable>(no)
        .implement<contract::bShouldRetry>(no)
        .implement<contract::isCriticalError>([](Self& /*self*/, std::int16_t& /*iErr*/) { return true; });
    for (const contract::AnyMember& member : contract::kMembers) {
      if (member.places.null == 0) continue;
      if (table.find(member.name) == nullptr) table.add(member.withBody(refusal(member)));
      table.find(member.name)->dispatchId = member.places.null;
    }
    return throughDoor(table.build());
  }();
  return info;
}

}  // namespace mirvane
