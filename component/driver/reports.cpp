#include "driver/fiscal_varlen_module2.h"
#include "interface/send_by_name.h"
#include "state/module_state.h"
#include "state/service.h"
#include "support/electronic_journal.h"

namespace mirvane {
namespace {

constexpr int kJournalTries = 3;
constexpr std::uint32_t kPauseMilliseconds = 3000;

// Whether the last journal step of this process failed, and none has succeeded since.
struct JournalStep {
  bool hasFailed = false;
};
bool& stepHasFailed() { return kept<JournalStep>().hasFailed; }

// Copies the day's journal from the device, before a closing.
Reply journalStep(Driver& driver) {
  if (driver.journal == nullptr) driver.journal = std::make_shared<FiscalJournal>();
  stepHasFailed() = true;  // also when a file error leaves the step
  Reply end = driver.journal->copyDay(true, true);
  stepHasFailed() = !end.succeeded();
  return end;
}

Reply repeatedJournalStep(Driver& driver) {
  Reply end;
  for (int i = 0; i < kJournalTries; ++i) {
    end = journalStep(driver);
    if (end.succeeded()) break;
    pause(kPauseMilliseconds);
  }
  return end;
}

// The box of a device error never comes from the Z report and its reprint.
void printSilently(const Text& command, Outcome outcome) {
  bool silent = true;
  sendByCurrentDriver(command, {outcome.Result, outcome.Exresult, silent});
}

// Closes the fiscal day once its journal is on the disk. Without the journal nothing is closed: the box and the outcome
// tell it, but a silent caller keeps its variables and learns of it from the missing report alone. A file error raises
// typeMismatch.
void closeDay(Driver& driver, Outcome outcome) {
  const Reply journal = repeatedJournalStep(driver);
  if (journal.succeeded()) {
    printSilently(u"x/2/2", outcome);
  } else if (!outcome.SupressError_) {
    Session::fail(journal, outcome);
  }
}

}  // namespace

void addReports(Rows& rows) {
  using namespace contract;
  rows.implement<issueZReport>(closeDay)
      // The whole closing when the device has a journal that was not taken yet.
      .implement<issueZReprintReport>([](Driver& driver, Outcome outcome) {
        const Reply journal = stepHasFailed() ? journalStep(driver) : Reply();
        if (!journal.succeeded()) {
          outcome.set(journal);
          if (outcome.SupressError_) return;
          showBox(FiscalJournal::outcomeText(journal), platform::kExclamation, kDeviceFamilyName);
          return;
        }
        printSilently(u"x/9/", outcome);
        if (outcome.Result == static_cast<int>(DeviceCode::kJournalNotTransferred)) closeDay(driver, outcome);
      })
      .implement<issueXReport>([](Driver&, Outcome outcome) { sendByCurrentDriver(u"x/1/", outcome); });
}

}  // namespace mirvane
