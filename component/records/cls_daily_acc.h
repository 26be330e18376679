#pragma once

#include "automation/object.h"

namespace mirvane {

/// Totals of the fiscal day; amounts in euro.
struct clsDailyAcc : ObjectOf<clsDailyAcc> {
  static constexpr std::string_view kName = "clsDailyAcc";
  static const ClassInfo& describe();

  double VatA{};  ///< sales at VAT rate A, and so on
  double VatB{};
  double VatC{};
  double VatD{};
  double VatE{};
  double VatSum{};
  std::int32_t LegalReceiptCount{};     ///< fiscal receipts
  std::int32_t illLegalReceiptCount{};  ///< non-fiscal documents
  double amtVoid{};
  double amtRefund{};
  double amtCancel{};
  double amtPaymentType1{};
  double amtPaymentType2{};
  double amtPaymentType3{};
  double amtDiscount{};
  double amtMarkUP{};
};

inline const ClassInfo& clsDailyAcc::describe() {
  static const ClassInfo info = ClassBuilder<clsDailyAcc>()
                                    .property("VatA", &clsDailyAcc::VatA)
                                    .property("VatB", &clsDailyAcc::VatB)
                                    .property("VatC", &clsDailyAcc::VatC)
                                    .property("VatD", &clsDailyAcc::VatD)
                                    .property("VatE", &clsDailyAcc::VatE)
                                    .property("VatSum", &clsDailyAcc::VatSum)
                                    .property("LegalReceiptCount", &clsDailyAcc::LegalReceiptCount)
                                    .property("illLegalReceiptCount", &clsDailyAcc::illLegalReceiptCount)
                                    .property("amtVoid", &clsDailyAcc::amtVoid)
                                    .property("amtRefund", &clsDailyAcc::amtRefund)
                                    .property("amtCancel", &clsDailyAcc::amtCancel)
                                    .property("amtPaymentType1", &clsDailyAcc::amtPaymentType1)
                                    .property("amtPaymentType2", &clsDailyAcc::amtPaymentType2)
                                    .property("amtPaymentType3", &clsDailyAcc::amtPaymentType3)
                                    .property("amtDiscount", &clsDailyAcc::amtDiscount)
                                    .property("amtMarkUP", &clsDailyAcc::amtMarkUP)
                                    .build();
  return info;
}

}  // namespace mirvane
