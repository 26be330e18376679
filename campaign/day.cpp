#include "campaign/day.h"

#include <algorithm>
#include <functional>

#include "campaign/till.h"

namespace mirvane::campaign {
namespace {

using emulator::Document;

/// After so many seconds a call that still repeats is taken to do so without end; a payment's first repetition comes
/// after three minutes.
constexpr double kPatience = 600;
/// A call that repeats sends a frame more often than this.
constexpr double kBetweenFrames = 30;

const Text kItems[] = {u"Α", u"Β", u"Γ", u"Δ"};
const Text kComment = u"ΕΥΧΑΡΙΣΤΟΥΜΕ ΠΟΛΥ";
const Text kCash = u"ΜΕΤΡΗΤΑ";
const Text kCard = u"ΚΑΡΤΑ";
const Text kRest = u"ΥΠΟΛΟΙΠΟ";

double euros(emulator::Cents cents) { return static_cast<double>(cents) / 100; }

int discountsBooked(Machine& machine) {
  int count = 0;
  for (const emulator::Receipt* receipt : machine.receipts()) count += static_cast<int>(receipt->adjustments().size());
  return count;
}

int documentsClosed(Machine& machine, Document::Kind kind) {
  const auto& documents = machine.device.roll().documents();
  return static_cast<int>(std::ranges::count_if(documents, [kind](const Document& document) {
    return document.kind == kind && document.state == Document::State::kClosed;
  }));
}

bool isReceiptOpen(Machine& machine) { return machine.device.fiscal().receipt.has_value(); }
emulator::Cents remaining(Machine& machine) {
  return isReceiptOpen(machine) ? machine.device.fiscal().receipt->remaining() : 0;
}

/// A call of the day, and how often the register has done what it wants.
struct Step {
  std::string_view name;
  std::function<bool(Till&)> call;
  std::function<int()> timesDone;
  /// Whether a payment that leaves nothing to pay has closed the receipt too; true for all other calls.
  std::function<bool()> isWhole = [] { return true; };
};

class Day {
 public:
  Day(Machine& machine, const Log& log) : machine_(machine), log_(log), till_(machine) {}

  Tally run() {
    tally_[kRuns] = 1;
    try {
      work();
    } catch (const StillWaiting&) {
      ++tally_[machine_.clock.now - machine_.tap.lastFrame < kBetweenFrames ? kWaits : kHang];
    }
    machine_.clock.limit = std::numeric_limits<double>::infinity();
    machine_.settleCard();
    for (const auto& timesDone : done_) tally_[kBookedTwice] += timesDone() > 1;
    tally_[kChargedTwice] = machine_.cardCharges() > 1;
    tally_[kJournalIncomplete] = machine_.journalsMissing() > 0;
    return tally_;
  }

 private:
  void work() {
    machine_.clock.limit = machine_.clock.now + kPatience;
    // A till that cannot connect tries again; what it then sells is judged.
    for (int i = 0; i < 3 && !till_.call("Connect_", Text(machine_.portName())); ++i) {
      till_.call("DisConnect_", Text(machine_.portName()));
    }
    for (const Text& name : kItems) sell("ItemSale", emulator::ItemKind::kSale, name);
    sell("ItemVoid", emulator::ItemKind::kVoid, kItems[1]);
    step({"discount",
          [](Till& till) {
            double amount = 0.5;
            return till.discount(amount);
          },
          [this] { return discountsBooked(machine_); }});
    step({"comment", [](Till& till) { return till.call("commentPrinterPrint", kComment, 1); },
          [this] { return machine_.linesPrinted(kComment); }});
    pay(1, kCash, 3);
    if (remaining(machine_) > 0) pay(2, kCard, euros(remaining(machine_)));
    if (remaining(machine_) > 0) pay(1, kRest, 0);
    if (isReceiptOpen(machine_)) {
      step({"cancel", [](Till& till) { return till.call("VoidReceipt"); },
            [this] { return isReceiptOpen(machine_) ? 0 : 1; }});
    }
    step({"cash in", [](Till& till) { return till.call("executeCashIn", 50.0, u"ΚΕΡΜΑΤΑ"); },
          [this] { return documentsClosed(machine_, Document::Kind::kCashIn); }});
    step({"X", [](Till& till) { return till.call("issueXReport"); },
          [this] { return machine_.linesPrinted(u"ΑΝΑΦΟΡΑ Χ - ΛΗΞΗ"); }});
    step({"Z", [](Till& till) { return till.call("issueZReport"); },
          [this] { return machine_.device.fiscal().closures; }});
  }

  void sell(const char* member, emulator::ItemKind kind, const Text& name) {
    step({member, [member, &name](Till& till) { return till.call(member, name, 2.0, 1.25, 24.0, 1); },
          [this, kind, &name] { return machine_.itemsBooked(kind, name); }});
  }

  void pay(std::int16_t number, const Text& name, double amount) {
    step({number == 2 ? "card" : "cash",
          [number, &name, amount](Till& till) {
            std::int16_t terminal = number == 2 ? 1 : 0;
            return till.call("Payment", number, name, amount, terminal, terminal);
          },
          [this, &name] { return machine_.paymentsBooked(name); },
          [this] { return !isReceiptOpen(machine_) || remaining(machine_) > 0; }});
  }

  void step(Step step) {
    machine_.clock.limit = machine_.clock.now + kPatience;
    const int before = step.timesDone();
    const bool toldDone = step.call(till_);
    if (machine_.device.cards().isUnderWay()) machine_.settleCard();
    const int after = step.timesDone();
    tally_[kToldDone] += toldDone && (after == before || !step.isWhole());
    tally_[kToldFailed] += !toldDone && after > before;
    const bool isNoAnswer = till_.Result == link_result::kNoAnswer || till_.Result == link_result::kNotNow;
    tally_[kToldUnknown] += !toldDone && after > before && isNoAnswer;
    done_.push_back(step.timesDone);
    if (!log_) return;
    log_(std::string(step.name) + ": told " + (toldDone ? "done" : "failed") + " (" + std::to_string(till_.Result) +
         " " + toUtf8(till_.Exresult) + "), done " + std::to_string(after - before) +
         (step.isWhole() ? "" : ", not closed"));
  }

  Machine& machine_;
  const Log& log_;
  Till till_;
  Tally tally_{};
  std::vector<std::function<int()>> done_;
};

}  // namespace

Tally runDay(Machine& machine, const std::vector<std::string>& rules, const Log& log) {
  for (const std::string& rule : rules) machine.faults.add(rule);
  return Day(machine, log).run();
}

}  // namespace mirvane::campaign
