#pragma once

#include "automation/object.h"

namespace mirvane {

/// State of the register.
struct clsStatus : ObjectOf<clsStatus> {
  static constexpr std::string_view kName = "clsStatus";
  static const ClassInfo& describe();

  bool isFiscalFull{};
  bool isDayOpen{};
  bool isTransactionOpen{};
  bool isInPayment{};
  bool isEuro{};
  bool isInPaidOut{};
  bool isInROA{};
  bool isFlashNearFull{};
  bool isFiscalNearFull{};
  std::int16_t FiscalType{};  ///< a FISCAL_TYPES number
  Text FiscalSN;              ///< serial number
};

inline const ClassInfo& clsStatus::describe() {
  static const ClassInfo info = ClassBuilder<clsStatus>()
                                    .property("isFiscalFull", &clsStatus::isFiscalFull)
                                    .property("isDayOpen", &clsStatus::isDayOpen)
                                    .property("isTransactionOpen", &clsStatus::isTransactionOpen)
                                    .property("isInPayment", &clsStatus::isInPayment)
                                    .property("isEuro", &clsStatus::isEuro)
                                    .property("isInPaidOut", &clsStatus::isInPaidOut)
                                    .property("isInROA", &clsStatus::isInROA)
                                    .property("isFlashNearFull", &clsStatus::isFlashNearFull)
                                    .property("isFiscalNearFull", &clsStatus::isFiscalNearFull)
                                    .property("FiscalType", &clsStatus::FiscalType)
                                    .property("FiscalSN", &clsStatus::FiscalSN)
                                    .build();
  return info;
}

}  // namespace mirvane
