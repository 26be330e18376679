#include "driver/fiscal_varlen_module2.h"

namespace mirvane {

// What a Result means for the caller.
void addErrors(Rows& rows) {
  using namespace contract;
  const auto ends = [](Driver& /*driver*/, Integer& iErr) { return endsByItself(iErr); };
  rows.implement<bFixableError>(ends)
      .implement<isErrorFixable>(ends)
      .implement<bShouldRetry>([](Driver& /*driver*/, Integer& iErr) { return mayBeSentAgain(iErr); })
      .implement<isCriticalError>([](Driver& /*driver*/, Integer& iErr) { return isCritical(iErr); });
}

}  // namespace mirvane
