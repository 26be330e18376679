#pragma once

#include "interface/outcome.h"
#include "records/cls_eft.h"
#include "records/cls_status.h"
#include "state/fiscal_types.h"

namespace mirvane {

/// The class that a point-of-sale program creates. It finds the driver of the device on the port and passes every
/// operation on to it by name, with the caller's own variables; it has no device logic of its own.
///
/// All facade objects share one driver, and destroying any of them releases it for all.
class fiscalTrevikModule : public ObjectOf<fiscalTrevikModule> {
 public:
  static constexpr std::string_view kName = "fiscalTrevikModule";
  static const ClassInfo& describe();

  fiscalTrevikModule();
  ~fiscalTrevikModule() override;

  void released() override;

  /// Which driver was selected last; selects none.
  FISCAL_TYPES getFiscalType();

  /// Selects a driver by probing when none is current, then connects it (a second time after a probe, which is
  /// harmless).
  void Connect_(Text PORT, Outcome outcome);

  /// Disconnects and releases the current driver; probes like Connect_ when there is none.
  Value DisConnect_(Text& PORT, Outcome outcome);

  /// The state that the current driver knows; a new record, and no driver selected, while none is current.
  std::shared_ptr<clsStatus> StatusRead();

  /// A card terminal record of this object's own, the same on every read.
  std::shared_ptr<clsEFT> clsEFTpos();

  /// Switches the debug trace and its window on, for the whole component. The operator may close the window, and a
  /// further call opens it again.
  void activateDebug();
  /// Switches the trace off, as the end of the last object of this class does: nobody else could.
  void DeactivateDebug();

 private:
  std::shared_ptr<clsEFT> eftpos_;
  bool hasEnded_ = false;
};

}  // namespace mirvane
