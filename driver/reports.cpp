#include "driver/fiscal_varlen_module2.h"
#include "interface/module_state.h"
#include "interface/numbers.h"
#include "interface/text.h"
#include "support/electronic_journal.h"

namespace mirvane {
namespace {

constexpr int kJournalTries = 3;
constexpr std::uint32_t kPauseMilliseconds = 3000;

constexpr std::int16_t kJournalNotTransferred = 61;

}  // namespace

// Takes the day's journal from the device, before a closing. True when that failed; `message` is then the code, "~"
// and its text.
bool FiscalVarlenModule2::journalStepFails(Text& message) {
  message = u"0";
  if (journal_ == nullptr) journal_ = std::make_shared<FiscalJournal>();
  bool closesDay = true;
  bool withForm = true;
  moduleState().journalStepFailed = true;  // also when a file error leaves the step
  moduleState().journalStepFailed = journal_->eMakeZreport(message, closesDay, withForm) != 0;
  return moduleState().journalStepFailed;
}

void FiscalVarlenModule2::tellJournalFailure(const Text& message, std::int16_t& Result, Text& Exresult) {
  const std::size_t code = message.find(u'~');
  Result = toInt(TextView(message).substr(0, code));
  Exresult = code == Text::npos ? Text() : message.substr(code + 1);
}

bool FiscalVarlenModule2::journalIsTaken(Text& message) {
  for (int i = 0; i < kJournalTries; ++i) {
    if (!journalStepFails(message)) return true;
    moduleState().platform->clock.sleep(kPauseMilliseconds);
  }
  return false;
}

Value FiscalVarlenModule2::issueZReport(std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  Text message;
  if (journalIsTaken(message)) {
    bool silent = true;
    sendByCurrentDriver(u"x/2/2", Result, Exresult, silent);
  } else if (!SupressError_) {
    // A silent caller keeps its variables: it learns of the failure from the missing report alone.
    tellJournalFailure(message, Result, Exresult);
    report(Result, Exresult, SupressError_);
  }
  return {};
}

Value FiscalVarlenModule2::issueZReprintReport(std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  Text message;
  if (moduleState().journalStepFailed && journalStepFails(message)) {
    tellJournalFailure(message, Result, Exresult);
    if (!SupressError_) {
      moduleState().platform->screen.messageBox(message, platform::kExclamation, kDeviceFamilyName);
    }
    return {};
  }
  bool silent = true;
  sendByCurrentDriver(u"x/9/", Result, Exresult, silent);
  if (Result == kJournalNotTransferred) issueZReport(Result, Exresult, SupressError_);
  return {};
}

Value FiscalVarlenModule2::issueXReport(std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  sendByCurrentDriver(u"x/1/", Result, Exresult, SupressError_);
  return {};
}

}  // namespace mirvane
