#include "driver/fiscal_varlen_module2.h"
#include "interface/send_by_name.h"
#include "state/module_state.h"
#include "state/service.h"
#include "support/electronic_journal.h"

namespace mirvane {
namespace {

constexpr int kJournalTries = 3;
constexpr std::uint32_t kPauseMilliseconds = 3000;

// Whether the last journal step of this process failed and none has succeeded since.
struct JournalStep {
  bool hasFailed = false;
};
bool& stepHasFailed() { return kept<JournalStep>().hasFailed; }

// Copies the day's journal from the register, before a closing.
Reply journalStep(Driver& driver) {
  if (driver.journal == nullptr) driver.journal = std::make_shared<FiscalJournal>();
  stepHasFailed() = true;  // also if a file error leaves the step
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

// The Z report and its reprint never show a message box for a register error.
void printSilently(const Text& command, Outcome outcome) {
  bool silent = true;
  sendByCurrentDriver(command, {outcome.Result, outcome.Exresult, silent});
}

// Closes the fiscal day once its journal is on disk. Without the journal nothing is closed: the message box and the
// outcome say so, but a silent caller's variables stay unchanged, and only the missing report shows it. A file error
// raises typeMismatch.
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
      // Does the whole closing if the register has a journal that was not read yet.
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
