#include "driver/fiscal_varlen_module2.h"

namespace mirvane {

// What a Result means for the caller.
void addErrors(Rows& rows) {
  using namespace contract;
  rows.implement<bFixableError>([](Driver& /*driver*/, Integer& iErr) { return endsByItself(iErr); });
  rows.implement<isErrorFixable>([](Driver& /*driver*/, Integer& iErr) { return endsByItself(iErr); });
  rows.implement<bShouldRetry>([](Driver& /*driver*/, Integer& iErr) { return mayBeSentAgain(iErr); })
      .implement<isCriticalError>([](Driver& /*driver*/, Integer& iErr) { return isCritical(iErr); });
}

}  // namespace mirvane
