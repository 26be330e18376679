#include "campaign/day.h"

#include <algorithm>
#include <cmath>

#include "campaign/till.h"
#include "text/code_page.h"

namespace mirvane::campaign {
namespace {

using emulator::Code;
using emulator::Document;
using emulator::ItemKind;

/// After so many seconds a call that still repeats is taken to do so without end; a payment's first repetition comes
/// after three minutes.
constexpr double kPatience = 600;
/// A call that repeats sends a frame more often than this.
constexpr double kBetweenFrames = 30;

const Text kComment = u"ΕΥΧΑΡΙΣΤΟΥΜΕ ΠΟΛΥ";
const Text kCash = u"ΜΕΤΡΗΤΑ";
const Text kCard = u"ΚΑΡΤΑ";
const Text kOtherCard = u"ΑΛΛΗ ΚΑΡΤΑ";
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
  /// Equal calls have equal names.
  std::string name;
  std::function<bool(Till&)> call;
  std::function<int()> timesDone;
  /// Whether a payment that leaves nothing to pay has closed the receipt too; true for all other calls.
  std::function<bool()> isWhole = [] { return true; };
};

class Day {
 public:
  Day(Machine& machine, const Log& log, const Visit& visit) : machine_(machine), log_(log), till_(machine, false) {
    if (visit) machine_.screen.program = [this, &visit] { visit(till_); };
  }
  Day(const Day&) = delete;
  Day& operator=(const Day&) = delete;
  ~Day() { machine_.screen.program = nullptr; }

  Tally run(Work work) {
    tally_[kRuns] = 1;
    try {
      connect();
      if (work == Work::kDay) workAllDay();
      if (work == Work::kCards) takeCards();
      if (work == Work::kSales) sellAllDay();
    } catch (const StillWaiting&) {
      ++tally_[machine_.clock.now - machine_.tap.lastFrame < kBetweenFrames ? kWaits : kHang];
    }
    machine_.clock.limit = std::numeric_limits<double>::infinity();
    machine_.settle();
    for (const auto& [name, calls] : calls_) judge(calls);
    tally_[kJournalIncomplete] = machine_.journalsMissing() > 0;
    return tally_;
  }

 private:
  /// All equal calls so far: nobody can tell which of them a booking belongs to.
  struct Calls {
    std::function<int()> timesDone;
    /// By what they were told; `open` has not come back.
    int done = 0, failed = 0, unanswered = 0, open = 0;
  };

  // A till that cannot connect, or is not told which register it is, tries again; what it then sells is judged.
  void connect() {
    constexpr int kTries = 3;
    const Text port(machine_.portName());
    machine_.clock.limit = machine_.clock.now + kPatience;
    for (int i = 0; i < kTries && !till_.call("Connect_", port); ++i) till_.call("DisConnect_", port);
    Text number;
    for (int i = 0; i < kTries && number.empty(); ++i) {
      till_.call("getSerialNumber", number);
      tell("serial number " + toUtf8(number));
    }
  }

  void workAllDay() {
    for (const char16_t* name : {u"Α", u"Β", u"Γ", u"Δ"}) sell("ItemSale", ItemKind::kSale, name);
    sell("ItemVoid", ItemKind::kVoid, u"Β");
    step({"discount",
          [](Till& till) {
            double amount = 0.5;
            return till.discount(amount);
          },
          [this] { return discountsBooked(machine_); }});
    comment();
    pay(1, kCash, 3);
    if (remaining(machine_) > 0) pay(2, kCard, euros(remaining(machine_)));
    endReceipt();
    step({"cash in", [](Till& till) { return till.call("executeCashIn", 50.0, u"ΚΕΡΜΑΤΑ"); },
          [this] { return documentsClosed(machine_, Document::Kind::kCashIn); }});
    step({"X", [](Till& till) { return till.call("issueXReport"); },
          [this] { return machine_.linesPrinted(u"ΑΝΑΦΟΡΑ Χ - ΛΗΞΗ"); }});
    step({"Z", [](Till& till) { return till.call("issueZReport"); },
          [this] { return machine_.device.fiscal().closures; }});
  }

  void takeCards() {
    constexpr int kCards = 6;  // after four that are declined, two that are not
    machine_.device.cards().options.next = {Code::kCardFailed, Code::kCardNotRead, Code::kTerminalInactive,
                                            Code::kNoChange};
    for (int i = 0; i < 2; ++i) sell("ItemSale", ItemKind::kSale, u"ΚΑΦΕΣ");
    for (int i = 0; i < 2; ++i) comment();
    for (int i = 0; i < 2 && remaining(machine_) > 0; ++i) pay(1, kCash, 1);
    for (int i = 0; i < kCards && remaining(machine_) > 0; ++i) pay(2, i == 0 ? kCard : kOtherCard, 0.5);
    if (remaining(machine_) > 0) pay(2, kCard, euros(remaining(machine_)));
    endReceipt();
  }

  void sellAllDay() {
    constexpr int kSales = 1000;
    constexpr int kInReceipt = 20;
    for (int i = 0; i < kSales; ++i) {
      const std::string number = std::to_string(i);
      sell("ItemSale", ItemKind::kSale, i % 4 < 2 ? u"ΚΑΦΕΣ" : Text(number.begin(), number.end()));
      for (int tries = 0; i % kInReceipt == kInReceipt - 1 && isReceiptOpen(machine_) && tries < 10; ++tries) {
        till_.call("Payment", 1, kRest, 0, 0, 0);
      }
    }
    tally_[kRuns] = kSales;
  }

  void sell(const char* member, ItemKind kind, const Text& name) {
    step({member + (" " + toUtf8(name)),
          [member, &name](Till& till) { return till.call(member, name, 2.0, 1.25, 24.0, 1); },
          [this, kind, name] { return machine_.itemsBooked(kind, name); }});
  }

  void comment() {
    step({"comment", [](Till& till) { return till.call("commentPrinterPrint", kComment, 1); },
          [this] { return machine_.linesPrinted(kComment); }});
  }

  void pay(std::int16_t number, const Text& name, double amount) {
    step({toUtf8(name) + " " + std::to_string(std::lround(amount * 100)),
          [number, &name, amount](Till& till) {
            std::int16_t terminal = number == 2 ? 1 : 0;
            return till.call("Payment", number, name, amount, terminal, terminal);
          },
          [this, name, amount] { return machine_.paymentsBooked(name, amount); },
          [this] { return !isReceiptOpen(machine_) || remaining(machine_) > 0; }});
  }

  void endReceipt() {
    if (remaining(machine_) > 0) pay(1, kRest, 0);
    if (!isReceiptOpen(machine_)) return;
    step({"cancel", [](Till& till) { return till.call("VoidReceipt"); },
          [this] { return isReceiptOpen(machine_) ? 0 : 1; }});
  }

  void step(const Step& step) {
    machine_.clock.limit = machine_.clock.now + kPatience;
    Calls& calls = calls_[step.name];
    calls.timesDone = step.timesDone;
    ++calls.open;
    const int before = step.timesDone();
    const int chargesBefore = machine_.cardCharges();
    const bool toldDone = step.call(till_);
    if (machine_.device.cards().isUnderWay()) machine_.settleCard();
    --calls.open;
    const bool isUnanswered = till_.Result == link_result::kNoAnswer || till_.Result == link_result::kNotNow;
    ++(toldDone ? calls.done : calls.failed);
    calls.unanswered += !toldDone && isUnanswered;
    tally_[kToldDone] += toldDone && !step.isWhole();
    tally_[kChargedTwice] += std::max(machine_.cardCharges() - chargesBefore - 1, 0);
    tell(step.name + ": told " + (toldDone ? "done" : "failed") + ", done " +
         std::to_string(step.timesDone() - before) + (step.isWhole() ? "" : ", not closed"));
  }

  void tell(const std::string& what) const {
    if (log_) log_(what + " (" + std::to_string(till_.Result) + " " + toUtf8(till_.Exresult) + ")");
  }

  void judge(const Calls& calls) {
    const int more = calls.timesDone() - calls.done;
    const int failed = std::clamp(more, 0, calls.failed);
    tally_[kToldDone] += std::max(-more, 0);
    tally_[kToldFailed] += failed;
    tally_[kToldUnknown] += std::min(failed, calls.unanswered);
    tally_[kBookedTwice] += std::max(more - calls.failed - calls.open, 0);
  }

  Machine& machine_;
  const Log& log_;
  Till till_;
  Tally tally_{};
  std::map<std::string, Calls> calls_;
};

}  // namespace

Tally runDay(Machine& machine, Work work, const std::vector<std::string>& rules, const Log& log, const Visit& visit) {
  constexpr std::string_view kSeed = "seed ";
  for (const std::string& rule : rules) {
    if (rule.starts_with(kSeed)) {
      machine.faults.seed(static_cast<std::uint32_t>(std::stoul(rule.substr(kSeed.size()))));
    } else {
      machine.faults.add(rule);
    }
  }
  return Day(machine, log, visit).run(work);
}

}  // namespace mirvane::campaign
