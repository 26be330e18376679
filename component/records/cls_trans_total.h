#pragma once

#include "automation/object.h"

namespace mirvane {

/// Totals of the open receipt, in euro.
struct clsTransTotal : ObjectOf<clsTransTotal> {
  static constexpr std::string_view kName = "clsTransTotal";
  static const ClassInfo& describe();

  double VatA{};  ///< sales at VAT rate A, and so on
  double VatB{};
  double VatC{};
  double VatD{};
  double VatE{};
  std::int32_t receiptNumber{};
  double receiptTotalAmt{};
};

inline const ClassInfo& clsTransTotal::describe() {
  static const ClassInfo info = ClassBuilder<clsTransTotal>()
                                    .property("VatA", &clsTransTotal::VatA)
                                    .property("VatB", &clsTransTotal::VatB)
                                    .property("VatC", &clsTransTotal::VatC)
                                    .property("VatD", &clsTransTotal::VatD)
                                    .property("VatE", &clsTransTotal::VatE)
                                    .property("receiptNumber", &clsTransTotal::receiptNumber)
                                    .property("receiptTotalAmt", &clsTransTotal::receiptTotalAmt)
                                    .build();
  return info;
}

}  // namespace mirvane
