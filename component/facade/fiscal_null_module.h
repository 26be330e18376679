#pragma once

#include "interface/outcome.h"
#include "records/cls_status.h"

namespace mirvane {

/// The current driver while no register is connected. It refuses every operation with Result 100, sends nothing, and
/// clears figures of an earlier register from the caller's records.
class fiscalNullModule : public ObjectOf<fiscalNullModule> {
 public:
  static constexpr std::string_view kName = "fiscalNullModule";
  static const ClassInfo& describe();

  /// What every operation does: sets Result 100 and its text and, unless suppressed, shows one message box.
  static void refuse(Outcome outcome);

  /// Closes a port that a driver left open; never refuses and shows nothing.
  Value DisConnect_(Text& PORT, Outcome outcome);
  /// Returns the same object every time.
  std::shared_ptr<clsStatus> StatusRead();

 private:
  std::shared_ptr<clsStatus> status_;
};

}  // namespace mirvane
