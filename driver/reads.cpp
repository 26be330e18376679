#include "driver/fiscal_varlen_module2.h"
#include "interface/fiscal_types.h"

namespace mirvane {

// The device's reply does not tell a full memory, a paid-out, a received-on-account or a nearly full fiscal memory, so
// those flags stay False.
clsStatus& FiscalVarlenModule2::refreshedStatus() {
  if (status_ == nullptr) status_ = std::make_shared<clsStatus>();
  status_->isDayOpen = flags_.dayOpen;
  status_->isTransactionOpen = flags_.transactionOpen;
  status_->isInPayment = flags_.inPayment;
  status_->isFlashNearFull = flags_.flashNearFull;
  status_->isEuro = true;
  return *status_;
}

std::shared_ptr<clsStatus> FiscalVarlenModule2::StatusRead() {
  refreshedStatus().FiscalType = FISCAL_VARLENFISCAL2;
  return status_;
}

void FiscalVarlenModule2::printerStatusRead(std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  send(u"?/", Result, Exresult, SupressError_);
  if (Result == 0) refreshedStatus();
}

}  // namespace mirvane
