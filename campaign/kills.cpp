#include "campaign/kills.h"

#include "campaign/recovery.h"

namespace mirvane::campaign {
namespace {

using emulator::Code;

/// Thrown where the till is killed.
struct Killed {};

constexpr long kNever = 1L << 40;

struct Scenario {
  std::vector<Act> acts;
  /// How the card payments end.
  std::vector<Code> cards{};
  /// The act with which the second receipt begins; 0 for none.
  std::size_t second = 0;
};

const Scenario& scenarioAt(std::size_t number) {
  const Act coffee = {"line", 250, u"ΚΑΦΕΣ"};
  const Act meal = {"line", 500, u"ΓΕΥΜΑ"};
  const Act thanks = {"comment", 0, u"ΕΥΧΑΡΙΣΤΟΥΜΕ"};
  const Act euro = {"cash", 100, u"ΜΕΤΡΗΤΑ"};
  const Act rest = {"cash", 0, u"ΥΠΟΛΟΙΠΟ"};
  const Act card = {"card", 300, u"ΚΑΡΤΑ"};
  const Act part = {"card", 200, u"ΚΑΡΤΑ"};
  const Act otherCard = {"card", 300, u"ΑΛΛΗ ΚΑΡΤΑ"};
  static const Scenario kAll[kScenarios] = {
      {{meal, coffee, {"line", -250, u"ΚΑΦΕΣ"}, thanks, euro, euro, card}},
      {{meal, card, {"cash", 1000, u"ΜΕΤΡΗΤΑ"}}},
      {{meal, {"card", 500, u"ΚΑΡΤΑ"}, rest}, {Code::kCardFailed}},
      {{meal, euro, card, card, otherCard, rest}, {Code::kCardNotRead, Code::kTerminalInactive}},
      {{meal, part, part, part, {"card", 100, u"ΚΑΡΤΑ"}}, {Code::kNoChange}},
      {{coffee, coffee, thanks, thanks, euro, euro, rest, coffee, coffee, rest}, {}, 7}};
  return kAll[number];
}

class Proof {
 public:
  Proof(Machine& machine, std::size_t scenario) : machine_(machine), scenario_(scenarioAt(scenario)) {
    for (const Code code : scenario_.cards) machine_.device.cards().options.next.push_back(code);
  }

  Tally run(const std::vector<long>& lives) {
    tally_[kRuns] = 1;
    bool isSelling = true;
    for (const long life : lives) {
      live(isSelling, life);
      isSelling = false;
    }
    if (isSelling) live(true, kNever);
    live(false, kNever);
    return tally_;
  }

  /// One run of the program, to its end or, after so many moments, to its death. How many it had.
  long live(bool isSelling, long moments) {
    constexpr double kLongest = 3600;
    long left = moments;
    const auto moment = [&left] {
      if (left-- == 0) throw Killed();
    };
    file_.moment = moment;
    // Nobody looks at every byte of a program that lives on.
    machine_.tap.moment = moments == kNever && !countsAll ? std::function<void()>() : moment;
    machine_.clock.limit = machine_.clock.now + kLongest;
    try {
      Till till(machine_);
      Cashier cashier(till, file_);
      till.call("Connect_", Text(machine_.portName()));
      const Cashier::Answers answers = cashier.recover();
      if (isSelling) {
        sell(cashier);
      } else {
        check(answers);
      }
    } catch (const Killed&) {
    } catch (const StillWaiting&) {
      ++tally_[kHang];
    }
    machine_.hangUp();
    return moments - left;
  }

  bool countsAll = false;

 private:
  void sell(Cashier& cashier) {
    for (std::size_t i = 0; i < scenario_.acts.size(); ++i) {
      if (i == 0 || i == scenario_.second) {
        receiptsBefore_.push_back(machine_.device.fiscal().day.receipts);
        cashier.beginReceipt();
      }
      bookedBefore_.push_back(timesBooked(scenario_.acts[i]));
      count(cashier.perform(scenario_.acts[i]), i);
    }
  }

  void check(const Cashier::Answers& answers) {
    if (answers.receipts > 0) {
      const bool isBooked = machine_.device.fiscal().day.receipts > receiptsBefore_[answers.receipts - 1];
      count(answers.receipt, kUnknown, isBooked);
    }
    if (answers.acts > 0) count(answers.last, answers.acts - 1);
  }

  void count(const std::string& answer, std::size_t number) {
    const Act& act = scenario_.acts[number];
    count(answer, act.what == "comment" ? kUnknownComment : kUnknown, timesBooked(act) > bookedBefore_[number]);
  }

  void count(const std::string& answer, Column unknown, bool isTrue) {
    const bool isCommitted = answer == "committed";
    ++tally_[answer == "unknown" ? unknown : isCommitted ? kCommitted : kNotCommitted];
    tally_[kWrong] += answer != "unknown" && isCommitted != isTrue;
  }

  int timesBooked(const Act& act) {
    using emulator::ItemKind;
    if (act.what == "line") return machine_.itemsBooked(act.amount > 0 ? ItemKind::kSale : ItemKind::kVoid, act.detail);
    return act.what == "comment" ? machine_.linesPrinted(act.detail) : machine_.paymentsBooked(act.detail);
  }

  Machine& machine_;
  const Scenario& scenario_;
  SavedFile file_;
  /// What the register had booked before each act and each receipt.
  std::vector<int> bookedBefore_, receiptsBefore_;
  Tally tally_{};
};

}  // namespace

Tally runSaved(Machine& machine, std::size_t scenario, const std::vector<std::string>& rules) {
  constexpr std::string_view kKilled = "killed after ";
  std::vector<long> lives;
  for (const std::string& rule : rules) {
    if (rule.starts_with(kKilled)) {
      lives.push_back(std::stol(rule.substr(kKilled.size())));
    } else {
      machine.faults.add(rule);
    }
  }
  return Proof(machine, scenario).run(lives);
}

Moments countMoments(LineKind line, std::size_t scenario) {
  Machine machine(line);
  Proof proof(machine, scenario);
  proof.countsAll = true;
  const long selling = proof.live(true, kNever);
  const std::size_t commands = machine.tap.commands.size();
  return {selling, proof.live(false, kNever), commands};
}

}  // namespace mirvane::campaign
