#pragma once

#include "interface/outcome.h"
#include "records/cls_status.h"

namespace mirvane {

/// The driver that is current while no device is: it refuses every operation with Result 100, touches no device, and
/// leaves no figures of an earlier device in the caller's records.
class fiscalNullModule : public ObjectOf<fiscalNullModule> {
 public:
  static constexpr std::string_view kName = "fiscalNullModule";
  static const ClassInfo& describe();

  /// What every operation does: Result 100, its text and, unless suppressed, one message box.
  static void refuse(Outcome outcome);

  /// Closes a port that a device driver left open; never refuses and shows nothing.
  Value DisConnect_(Text& PORT, Outcome outcome);
  /// The same object on every read.
  std::shared_ptr<clsStatus> StatusRead();

 private:
  std::shared_ptr<clsStatus> status_;
};

}  // namespace mirvane
