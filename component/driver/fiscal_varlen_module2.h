#pragma once

#include "driver/words.h"
#include "interface/members.h"
#include "session/session.h"

namespace mirvane {

class FiscalJournal;

/// The driver of the second-generation device. What each member of the driver interface does is written where its row
/// is: one source file per subject.
struct FiscalVarlenModule2 : ObjectOf<FiscalVarlenModule2> {
  static constexpr std::string_view kName = "FiscalVarlenModule2";
  static const ClassInfo& describe();

  /// As the session does it.
  Reply send(TextView command, Outcome outcome) { return session.send(command, outcome); }

  /// The status record that programs hold, with what the device told last. It does not tell a full memory, a paid-out,
  /// a received-on-account or a nearly full fiscal memory, so those flags stay False.
  clsStatus& refreshedStatus();

  Session session{kSecondGenerationWords};
  std::shared_ptr<clsStatus> status;
  std::shared_ptr<FiscalJournal> journal;
};

using Driver = FiscalVarlenModule2;
using Rows = ClassBuilder<FiscalVarlenModule2>;

/// Prints a comment line, cut to what the printer takes; a blank one prints nothing and succeeds.
void printComment(Driver& driver, const Text& text, std::int16_t size, Outcome outcome);

// The rows of each subject.
void addConnection(Rows& rows);
void addTransactions(Rows& rows);
void addReports(Rows& rows);
void addReads(Rows& rows);
void addConfiguration(Rows& rows);
void addCardTerminals(Rows& rows);
void addErrors(Rows& rows);

}  // namespace mirvane
