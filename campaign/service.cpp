#include "campaign/service.h"

#include <algorithm>

#include "service/interface.h"
#include "service/sqlite_store.h"
#include "service/worker.h"

namespace mirvane::campaign {
namespace {

using emulator::Code;
using emulator::Document;
using service::Job;
using service::State;

/// Thrown where the service is killed.
struct ServiceKilled {};

constexpr long kEver = 1L << 40;

/// A store whose writes are moments, and which may fail.
class TappedStore : public service::Store {
 public:
  bool add(Job& job, bool isTold) override {
    return written([&] { return store_.add(job, isTold); });
  }
  std::optional<Job> find(const std::string& id) override { return store_.find(id); }
  std::optional<Job> claim() override { return store_.claim(); }
  bool save(Job& job, const std::string& seen) override {
    return written([&] { return store_.save(job, seen); });
  }
  std::vector<Job> list(const Page& page) override { return store_.list(page); }
  int unfinished() override { return store_.unfinished(); }
  std::string recall(const std::string& name) override { return store_.recall(name); }
  void remember(const std::string& name, const std::string& value) override {
    written([&] { return store_.remember(name, value), true; });
  }
  void keepFile(const std::string& job, const std::string& name, const std::string& bytes) override {
    written([&] { return store_.keepFile(job, name, bytes), true; });
  }
  std::vector<File> files(const std::string& job) override { return store_.files(job); }
  std::optional<std::string> file(const std::string& job, const std::string& name) override {
    return store_.file(job, name);
  }

  /// Called before and after each write.
  std::function<void()> moment;
  long writes = 0, failsAt = kEver, failures = 5;

 private:
  template <class Write>
  bool written(Write write) {
    const long number = writes++;
    if (moment) moment();
    if (number >= failsAt && number < failsAt + failures) throw service::StoreError("cannot be written");
    const bool isDone = write();
    if (moment) moment();
    return isDone;
  }

  service::SqliteStore store_{":memory:"};
};

struct Wanted {
  std::string method, path, body;
  /// Of a job: its id; empty for what changes one.
  std::string id;
};

struct ServiceScenario {
  std::vector<Wanted> wanted;
  std::vector<Code> cards{};
};

Wanted receipt(const std::string& id, const std::string& lines, const std::string& payments) {
  return {"PUT", "/v1/receipts/" + id, "{\"lines\": [" + lines + "], \"payments\": [" + payments + "]}", id};
}

/// The item tells whose receipt it is.
std::string sale(const std::string& id, const std::string& price, const std::string& more = {}) {
  return "{\"description\": \"" + id + "\", \"price\": " + price + ", \"vat\": 24" + more + "}";
}

const ServiceScenario& serviceScenarioAt(std::size_t number) {
  const std::string kTwoAndOne =
      sale("R1", "2.5") + "," + sale("R1", "2.5") + "," + sale("R1", "2.5", R"(,"type":"void")");
  static const ServiceScenario kAll[kServiceScenarios] = {
      {{receipt("R1",
                kTwoAndOne +
                    R"(,{"type":"discount","amount":0.5,"on":"subtotal"},{"type":"comment","text":"ΕΥΧΑΡΙΣΤΟΥΜΕ"})",
                R"({"type":"cash","amount":5})"),
        receipt("R2", sale("R2", "5"), R"({"type":"card","amount":3,"terminal":1},{"type":"cash"})"),
        {"PUT", "/v1/cash/C1", R"({"direction":"in","amount":20})", "C1"}}},
      {{receipt("R1", sale("R1", "5"), R"({"type":"card","amount":5,"terminal":1})"),
        {"PUT", "/v1/receipts/R1/payments/1", R"({"type":"cash"})", ""},
        receipt("R2", sale("R2", "5"), R"({"type":"cash","amount":1},{"type":"cash","amount":1},{"type":"cash"})")},
       {Code::kCardFailed}},
      {{receipt("R1", sale("R1", "5"), ""),
        {"DELETE", "/v1/receipts/R1", "", ""},
        receipt("R2", sale("R2", "4"), R"({"type":"card","terminal":1})")}},
      {{receipt("R1", sale("R1", "5"), R"({"type":"cash"})"),
        {"PUT", "/v1/reports/z/Z1", "", "Z1"},
        {"PUT", "/v1/reports/x/X1", "", ""},
        receipt("R2", sale("R2", "5"), R"({"type":"cash"})")}},
  };
  return kAll[number];
}

class ServiceProof {
 public:
  ServiceProof(Machine& machine, std::size_t scenario, Log log)
      : machine_(machine), scenario_(serviceScenarioAt(scenario)), log_(std::move(log)) {
    for (const Code code : scenario_.cards) machine_.device.cards().options.next.push_back(code);
  }

  Tally run(const std::vector<long>& lives) {
    tally_[kRuns] = 1;
    for (const long life : lives) live(life);
    live(kEver);
    if (store.failures == kEver) {
      // Somebody has seen to it, and started the service anew.
      store.failsAt = kEver;
      live(kEver);
    }
    check();
    return tally_;
  }

  /// One run of the service, to the end of what is wanted or, after so many moments, to its death.
  long live(long moments) {
    constexpr double kLongest = 3600;
    long left = moments;
    const auto moment = [&left] {
      if (left-- == 0) throw ServiceKilled();
    };
    store.moment = moment;
    machine_.tap.moment = moments == kEver && !countsAll ? std::function<void()>() : moment;
    machine_.clock.limit = machine_.clock.now + kLongest;
    try {
      service::Board board;
      service::Worker worker(machine_.platform, store, board, Text(machine_.portName()));
      service::Interface interface(store, board, {nullptr, 100, [] {}, [this] { return machine_.clock.sinceEpoch(); }});
      for (const Wanted& wanted : scenario_.wanted) satisfy(wanted, interface, worker);
    } catch (const ServiceKilled&) {
    } catch (const StillWaiting&) {
      ++tally_[kWaits];
    }
    machine_.hangUp();
    return moments - left;
  }

  TappedStore store;
  bool countsAll = false;

 private:
  /// Asks until something can be done about it, and once more then, as one does whose answer got lost.
  void satisfy(const Wanted& wanted, service::Interface& interface, service::Worker& worker) {
    constexpr int kMostSteps = 60;
    for (int i = 0; i < kMostSteps; ++i) {
      const int status = ask(wanted, interface);
      worker.step();
      if (status < 500 && status != 202 && ask(wanted, interface) < 500) return;
    }
  }

  int ask(const Wanted& wanted, service::Interface& interface) {
    http::Request request{wanted.method, wanted.path, {}, {}, wanted.body};
    const http::Answer answer = interface.answer(request);
    if (log_) log_(wanted.method + " " + wanted.path + ": " + std::to_string(answer.status) + " " + answer.body);
    return answer.status;
  }

  void check() {
    int charges = 0;
    bool isOpenFor = false;
    bool isAllKnown = true;
    for (const Wanted& wanted : scenario_.wanted) {
      if (wanted.id.empty()) continue;
      const std::optional<Job> job = store.find(wanted.id);
      const int booked = timesBooked(wanted.id);
      tally_[kBookedTwice] += booked > 1;
      if (!job || job->state < State::kCommitted) {
        // A service that waits on says nothing, and nothing may be booked then but what it waits for to pay.
        ++tally_[kWaits];
        isOpenFor = isOpenFor || (job && job->state != State::kQueued);
        continue;
      }
      const bool isUnknown = job->state == State::kUnknown;
      isAllKnown = isAllKnown && !isUnknown;
      const bool isCommitted = job->state == State::kCommitted;
      ++tally_[isUnknown ? kUnknown : isCommitted ? kCommitted : kNotCommitted];
      tally_[kWrong] += !isUnknown && isCommitted != (booked == 1);
      charges += isCommitted && job->result.find("\"card\"") != std::string::npos;
      if (log_) log_(wanted.id + " " + nameOf(job->state) + ", booked " + std::to_string(booked) + " " + job->result);
    }
    // Left open silently.
    tally_[kWrong] += machine_.device.fiscal().receipt.has_value() && isAllKnown && !isOpenFor;
    tally_[kChargedTwice] += isAllKnown && !isOpenFor && machine_.cardCharges() > charges;
  }

  int timesBooked(const std::string& id) {
    if (id == "Z1") return machine_.device.fiscal().closures;
    int count = 0;
    for (const Document& document : machine_.device.roll().documents()) {
      if (document.state != Document::State::kClosed) continue;
      const bool isCash = id == "C1" && document.kind == Document::Kind::kCashIn;
      const bool isReceipt = document.receipt && !document.receipt->items().empty() &&
                             document.receipt->items().front().description == fromUtf8(id);
      count += isCash || isReceipt;
    }
    return count;
  }

  Machine& machine_;
  const ServiceScenario& scenario_;
  const Log log_;
  Tally tally_{};
};

}  // namespace

Tally runService(Machine& machine, std::size_t scenario, const std::vector<std::string>& rules, const Log& log) {
  constexpr std::string_view kKilled = "killed after ";
  constexpr std::string_view kFails = "store fails after ";
  constexpr std::string_view kReadOnly = "store read-only after ";
  std::vector<long> lives;
  ServiceProof proof(machine, scenario, log);
  for (const std::string& rule : rules) {
    if (rule.starts_with(kKilled)) {
      lives.push_back(std::stol(rule.substr(kKilled.size())));
    } else if (rule.starts_with(kFails)) {
      proof.store.failsAt = std::stol(rule.substr(kFails.size()));
    } else if (rule.starts_with(kReadOnly)) {
      proof.store.failsAt = std::stol(rule.substr(kReadOnly.size()));
      proof.store.failures = kEver;
    } else {
      machine.faults.add(rule);
    }
  }
  return proof.run(lives);
}

Moments countServiceMoments(LineKind line, std::size_t scenario) {
  Machine machine(line);
  ServiceProof proof(machine, scenario, {});
  proof.countsAll = true;
  const long selling = proof.live(kEver);
  const std::size_t commands = machine.tap.commands.size();
  return {selling, proof.live(kEver), commands};
}

long countServiceWrites(LineKind line, std::size_t scenario) {
  Machine machine(line);
  ServiceProof proof(machine, scenario, {});
  proof.live(kEver);
  return proof.store.writes;
}

}  // namespace mirvane::campaign
