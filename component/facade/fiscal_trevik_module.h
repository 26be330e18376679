#pragma once

#include "interface/outcome.h"
#include "records/cls_eft.h"
#include "records/cls_status.h"
#include "state/fiscal_types.h"

namespace mirvane {

/// The class that a till program creates. It finds the driver for the register on the port and forwards every operation
/// to it by name, with the caller's own variables. It has no register logic of its own.
///
/// All facade objects share one driver; destroying any of them releases it for all.
class fiscalTrevikModule : public ObjectOf<fiscalTrevikModule> {
 public:
  static constexpr std::string_view kName = "fiscalTrevikModule";
  static const ClassInfo& describe();

  fiscalTrevikModule();
  ~fiscalTrevikModule() override;

  void released() override;

  /// The type of the driver selected last; does not select one.
  FISCAL_TYPES getFiscalType();

  /// If no driver is current, probes for one, then connects it. After a probe this connects a second time, which is
  /// harmless.
  void Connect_(Text PORT, Outcome outcome);

  /// Disconnects and releases the current driver; if there is none, probes as Connect_ does.
  Value DisConnect_(Text& PORT, Outcome outcome);

  /// The state that the current driver knows. While no driver is current, returns a new record and selects none.
  std::shared_ptr<clsStatus> StatusRead();

  /// This object's card terminal record; the same on every read.
  std::shared_ptr<clsEFT> clsEFTpos();

  /// Switches the debug trace and its window on, for the whole component. If the operator closes the window, another
  /// call opens it again.
  void activateDebug();
  /// Switches the trace off. The end of the last facade object does so too, because nobody else could.
  void DeactivateDebug();

 private:
  std::shared_ptr<clsEFT> eftpos_;
  bool hasEnded_ = false;
};

}  // namespace mirvane
