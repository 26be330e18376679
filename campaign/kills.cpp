#include "campaign/kills.h"

#include <array>
#include <sstream>

#include "campaign/plan.h"
#include "campaign/recovery.h"
#include "campaign/runner.h"

namespace mirvane::campaign {
namespace {

/// Thrown where the till is killed.
struct Killed {};

enum Column { kStates, kCommitted, kNotCommitted, kUnknownComment, kUnknown, kWrong, kHang, kCrash, kColumns };
constexpr std::string_view kNames[] = {"states",         "committed", "not committed", "unknown: a comment",
                                       "unknown: other", "wrong",     "hang",          "crash"};
using Counts = std::array<long, kColumns>;

struct Scenario {
  std::string name;
  std::vector<Act> acts;
  /// How the card payments end.
  std::vector<emulator::Code> cards;
};

const std::vector<Scenario>& scenarios() {
  constexpr auto kOk = emulator::Code::kOk;
  constexpr auto kDeclined = emulator::Code::kCardFailed;
  const Act lines[] = {{"line", 500, u"ΑΛΦΑ"}, {"line", 200, u"ΒΗΤΑ"}};
  static const std::vector<Scenario> kAll = {
      {"a void, a comment, cash and a card",
       {lines[0],
        lines[1],
        {"line", -200, u"ΒΗΤΑ"},
        {"comment", 0, u"ΣΧΟΛΙΟ"},
        {"cash", 200, u"ΜΕΤΡΗΤΑ"},
        {"card", 300, u"ΚΑΡΤΑ"}},
       {kOk}},
      {"a card, then cash with change", {lines[0], {"card", 300, u"ΚΑΡΤΑ"}, {"cash", 1000, u"ΜΕΤΡΗΤΑ"}}, {kOk}},
      {"a card that is declined, then cash", {lines[0], {"card", 500, u"ΚΑΡΤΑ"}, {"cash", 0, u"ΜΕΤΡΗΤΑ"}}, {kDeclined}},
      {"cash, a card that is declined, another card",
       {lines[0], {"cash", 200, u"ΜΕΤΡΗΤΑ"}, {"card", 300, u"ΚΑΡΤΑ Α"}, {"card", 300, u"ΚΑΡΤΑ Β"}},
       {kDeclined, kOk}},
      {"two cards", {lines[0], {"card", 200, u"ΚΑΡΤΑ Α"}, {"card", 300, u"ΚΑΡΤΑ Β"}}, {kOk, kOk}},
  };
  return kAll;
}

bool isDone(Machine& machine, const Act& act) {
  using emulator::ItemKind;
  if (act.what == "line")
    return machine.itemsBooked(act.amount > 0 ? ItemKind::kSale : ItemKind::kVoid, act.detail) > 0;
  if (act.what == "comment") return machine.linesPrinted(act.detail) > 0;
  return machine.paymentsBooked(act.detail) > 0;
}

/// One state: a scenario over a line, with a till that is killed after so many moments, or a register that misbehaves.
struct State {
  std::size_t row;
  const Scenario* scenario;
  LineKind line;
  /// Moments that each run of the program lives to; the run behind the last of them lives on.
  std::vector<long> lives;
  std::vector<std::string> rules;
};

class Proof {
 public:
  explicit Proof(const State& state) : state_(state), machine_(state.line) {
    for (const emulator::Code code : state.scenario->cards) machine_.device.cards().options.next.push_back(code);
    for (const std::string& rule : state.rules) machine_.faults.add(rule);
  }

  Counts run() {
    counts_[kStates] = 1;
    bool isSelling = true;
    for (const long life : state_.lives) {
      left_ = life;
      live(isSelling);
      isSelling = false;
    }
    left_ = -1;
    if (isSelling) live(true);
    live(false);
    return counts_;
  }

  /// How many moments a run of the program has that nothing ends.
  long moments(bool isSelling) {
    left_ = 1L << 40;
    const long start = left_;
    live(isSelling);
    return start - left_;
  }
  std::size_t commands() const { return machine_.tap.commands.size(); }

 private:
  /// One run of the program, to its end or to its death.
  void live(bool isSelling) {
    constexpr double kPatience = 3600;
    const auto moment = [this] {
      if (left_-- == 0) throw Killed();
    };
    machine_.tap.moment = file_.moment = left_ < 0 ? std::function<void()>() : moment;
    machine_.clock.limit = machine_.clock.now + kPatience;
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
      ++counts_[kHang];
    }
    machine_.hangUp();
  }

  void sell(Cashier& cashier) {
    cashier.beginReceipt();
    for (const Act& act : state_.scenario->acts) {
      const std::string answer = cashier.perform(act);
      count(answer, act, isDone(machine_, act));
    }
  }

  void check(const Cashier::Answers& answers) {
    const bool isBooked = machine_.device.fiscal().day.receipts > 0;
    if (!answers.receipt.empty()) count(answers.receipt, {"receipt", 0, {}}, isBooked);
    if (answers.act == 0) return;
    const Act& act = state_.scenario->acts[answers.act - 1];
    count(answers.last, act, isDone(machine_, act));
  }

  void count(const std::string& answer, const Act& act, bool isTrue) {
    if (answer == "unknown") {
      ++counts_[act.what == "comment" ? kUnknownComment : kUnknown];
    } else {
      ++counts_[answer == "committed" ? kCommitted : kNotCommitted];
      counts_[kWrong] += (answer == "committed") != isTrue;
    }
  }

  const State& state_;
  Machine machine_;
  SavedFile file_;
  /// Moments to the death of the program; below 0 it lives on.
  long left_ = -1;
  Counts counts_{};
};

struct Proofs {
  std::vector<std::string> rows;
  std::vector<State> states;
};

Proofs makeProofs() {
  Proofs proofs;
  for (const Scenario& scenario : scenarios()) {
    const std::size_t row = proofs.rows.size();
    proofs.rows.push_back("killed: " + scenario.name);
    proofs.rows.push_back("killed twice: " + scenario.name);
    proofs.rows.push_back("every fault: " + scenario.name);
    for (const LineKind line : kLines) {
      const State whole{row, &scenario, line, {}, {}};
      Proof counted(whole);
      const long moments = counted.moments(true);
      const std::size_t commands = counted.commands();
      const long later = counted.moments(false);
      for (long moment = 0; moment < moments; ++moment) {
        proofs.states.push_back({row, &scenario, line, {moment}, {}});
        // The second time at a moment that moves on with the first.
        const long second = moment * 7 % later;
        for (const long again : {second, (second + later / 2) % later}) {
          proofs.states.push_back({row + 1, &scenario, line, {moment, again}, {}});
        }
      }
      for (const std::string& rule : singleFaults()) {
        for (std::size_t at = 0; at < commands; ++at) {
          proofs.states.push_back({row + 2, &scenario, line, {}, {"after " + std::to_string(at) + " " + rule}});
        }
      }
    }
  }
  return proofs;
}

}  // namespace

AnswersTable proveAnswers(bool shareOnly) {
  constexpr std::size_t kShare = 10;
  Proofs proofs = makeProofs();
  if (shareOnly) {
    std::size_t index = 0;
    std::erase_if(proofs.states, [&index](const State&) { return index++ % kShare != 0; });
  }
  Counts crashed{};
  Counts hung{};
  crashed[kStates] = crashed[kCrash] = hung[kStates] = hung[kHang] = 1;
  const auto prove = [&proofs](std::size_t index) { return Proof(proofs.states[index]).run(); };
  const std::vector<Counts> results = runAll(proofs.states.size(), 2, prove, crashed, hung);
  std::vector<Counts> sums(proofs.rows.size() + 1);
  for (std::size_t i = 0; i < results.size(); ++i) {
    for (std::size_t column = 0; column < kColumns; ++column) {
      sums[proofs.states[i].row][column] += results[i][column];
      sums.back()[column] += results[i][column];
    }
  }
  proofs.rows.emplace_back("all");
  std::ostringstream out;
  out << "| |";
  for (const std::string_view name : kNames) out << " " << name << " |";
  out << "\n|";
  for (std::size_t i = 0; i <= kColumns; ++i) out << "---|";
  for (std::size_t row = 0; row < sums.size(); ++row) {
    out << "\n| " << proofs.rows[row] << " |";
    for (const long value : sums[row]) out << " " << value << " |";
  }
  out << "\n";
  const Counts& all = sums.back();
  return {out.str(), all[kWrong] + all[kHang] + all[kCrash], all[kStates]};
}

}  // namespace mirvane::campaign
