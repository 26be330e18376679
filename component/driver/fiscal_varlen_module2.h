#pragma once

#include "driver/words.h"
#include "interface/members.h"
#include "session/session.h"

namespace mirvane {

class FiscalJournal;

/// The driver of the second-generation register. Each member is described where its row is; there is one source file
/// per subject.
struct FiscalVarlenModule2 : ObjectOf<FiscalVarlenModule2> {
  static constexpr std::string_view kName = "FiscalVarlenModule2";
  static const ClassInfo& describe();

  Reply send(TextView command, Outcome outcome) { return session.send(command, outcome); }

  /// The status record that programs hold, updated from the register's last reply. The register does not report a full
  /// or nearly full fiscal memory, paid-out or received-on-account, so those flags stay False.
  clsStatus& refreshedStatus();

  Session session{kSecondGenerationWords};
  std::shared_ptr<clsStatus> status;
  std::shared_ptr<FiscalJournal> journal;
};

using Driver = FiscalVarlenModule2;
using Rows = ClassBuilder<FiscalVarlenModule2>;

/// Prints a comment line, cut to the printer's width. A blank one prints nothing and succeeds.
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
