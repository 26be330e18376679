#include "service/words.h"

#include <algorithm>

#include "tools/result_codes.h"

namespace mirvane::service {
namespace {

using http::Json;

Json bilingual(const Bilingual& text) { return {{"en", text.en}, {"el", text.el}}; }

/// What is no Result of the component's.
struct Reason {
  const char* name;
  Bilingual meaning, remedy;
};

const Reason kReasons[] = {
    {"cancelled",
     {"The caller has cancelled it. Nothing was booked.", "Ακυρώθηκε από το πρόγραμμα. Δεν καταχωρίστηκε τίποτα."},
     {"Nothing.", "Τίποτα."}},
    {"gone",
     {"The receipt was cancelled at the register. Nothing was booked.",
      "Η απόδειξη ακυρώθηκε στην ταμειακή. Δεν καταχωρίστηκε τίποτα."},
     {"Sell again if that was a mistake.", "Επαναλάβετε την πώληση αν έγινε κατά λάθος."}},
    {"differs",
     {"The register's total is another one than the lines come to. The receipt was cancelled.",
      "Το σύνολο της ταμειακής διαφέρει από τις γραμμές. Η απόδειξη ακυρώθηκε."},
     {"Tell the program's supplier.", "Ενημερώστε τον προμηθευτή του προγράμματος."}},
    {"document-open",
     {"A receipt is open at the register that is none of ours.", "Στην ταμειακή είναι ανοιχτή μια ξένη απόδειξη."},
     {"Finish it at the register, or have it cancelled.", "Ολοκληρώστε την στην ταμειακή ή ακυρώστε την."}},
    {"other-state",
     {"The register has changed in another way than was asked for.",
      "Η ταμειακή άλλαξε με άλλον τρόπο από αυτόν που ζητήθηκε."},
     {"Look at the paper and say which of the two it was.", "Δείτε το χαρτί και δηλώστε τι από τα δύο έγινε."}},
    {"another-register",
     {"It was begun at another register.", "Είχε αρχίσει σε άλλη ταμειακή."},
     {"Look at that register's paper.", "Δείτε το χαρτί εκείνης της ταμειακής."}},
    {"older-than-register",
     {"The database is older than the register: a copy of an earlier day, or somebody else has used the register.",
      "Η βάση είναι παλαιότερη από την ταμειακή: αντίγραφο άλλης ημέρας, ή χρήση της ταμειακής από άλλον."},
     {"Compare the register's paper with what the shop has, settle each, then accept.",
      "Συγκρίνετε το χαρτί με τις εγγραφές, τακτοποιήστε κάθε μία και μετά αποδεχθείτε."}},
};

const Reason* findReason(const std::string& name) {
  const auto* found = std::ranges::find(kReasons, name, [](const Reason& reason) { return std::string(reason.name); });
  return found == std::end(kReasons) ? nullptr : found;
}

}  // namespace

Json failureView(std::int16_t code, const std::string& text) {
  if (code == 0) return whyView(text);
  Json view{{"code", code}, {"text", text}};
  const ResultCode* known = findResultCode(code, text);
  if (!known) return view;
  view.set("name", known->name).set("meaning", bilingual(known->meaning)).set("remedy", bilingual(known->cashier));
  const bool isAgain = known->repeating == Repeating::kYes || known->repeating == Repeating::kLater;
  return view.set("again", isAgain).set("page", "/result-codes.md");
}

Json waitView(const Wait& wait) {
  // A register that tells of its paper beside the answer gives no code for it.
  constexpr std::int16_t kPaperEnd = 25;
  return failureView(wait.on == "paper" ? kPaperEnd : wait.code, wait.text).set("on", wait.on);
}

Json whyView(const std::string& why) {
  Json view{{"name", why}};
  const Reason* reason = findReason(why);
  if (!reason) return view.set("text", why);
  return view.set("meaning", bilingual(reason->meaning)).set("remedy", bilingual(reason->remedy));
}

}  // namespace mirvane::service
