#include "driver/fiscal_varlen_module2.h"

namespace mirvane {

const ClassInfo& FiscalVarlenModule2::describe() {
  static const ClassInfo info = [] {
    Rows rows;
    for (const auto add :
         {addConnection, addTransactions, addReports, addReads, addConfiguration, addCardTerminals, addErrors}) {
      add(rows);
    }
    return rows.build();
  }();
  return info;
}

}  // namespace mirvane
