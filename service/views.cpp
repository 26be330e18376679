#include "service/views.h"

#include <chrono>
#include <sstream>

#include "service/words.h"

namespace mirvane::service {
namespace {

using http::Json;

std::string padded(std::int64_t number, std::size_t digits) {
  std::string text = std::to_string(number);
  return std::string(digits - std::min(digits, text.size()), '0') + text;
}

/// With the time as people write it.
Json dated(Json json) {
  const Json* time = json.find("time");
  if (time) json.set("time", timeText(static_cast<std::int64_t>(*time->as<double>())));
  return json;
}

/// One family of Prometheus' text format.
class Family {
 public:
  Family(std::ostream& out, const char* name, const char* type, const char* help) : out_(out), name_(name) {
    out << "# HELP " << name << " " << help << "\n# TYPE " << name << " " << type << "\n";
  }
  Family& add(double value, const std::string& labels = {}, const char* suffix = "") {
    out_ << name_ << suffix << (labels.empty() ? "" : "{" + labels + "}") << " " << value << "\n";
    return *this;
  }
  void add(const Histogram& histogram, const std::string& labels = {}) {
    double count = 0;
    for (std::size_t i = 0; i < histogram.counts.size(); ++i) {
      std::ostringstream bound;
      i < Histogram::kBounds.size() ? bound << Histogram::kBounds[i] : bound << "+Inf";
      count += static_cast<double>(histogram.counts[i]);
      add(count, labels + (labels.empty() ? "" : ",") + "le=\"" + bound.str() + "\"", "_bucket");
    }
    add(histogram.sum, labels, "_sum").add(count, labels, "_count");
  }

 private:
  std::ostream& out_;
  const char* const name_;
};

}  // namespace

std::string timeText(std::int64_t moment) {
  using namespace std::chrono;
  const sys_time<milliseconds> time{milliseconds(moment)};
  const auto day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss clock(time - day);
  return padded(static_cast<int>(date.year()), 4) + "-" + padded(static_cast<unsigned>(date.month()), 2) + "-" +
         padded(static_cast<unsigned>(date.day()), 2) + "T" + padded(clock.hours().count(), 2) + ":" +
         padded(clock.minutes().count(), 2) + ":" + padded(clock.seconds().count(), 2) + "." +
         padded(clock.subseconds().count(), 3) + "Z";
}

Json jobView(const Job& job, const Board::Facts& facts) {
  const bool isWaiting = facts.job == job.id && !facts.wait.on.empty() && job.state <= State::kPrinting;
  Json view{{"id", job.id},
            {"kind", job.kind},
            {"state", isWaiting ? "waiting" : nameOf(job.state)},
            {"created", timeText(job.created)},
            {"changed", timeText(job.changed)},
            {"version", job.version},
            {"place", job.place}};
  if (!job.registerName.empty()) view.set("register", job.registerName);
  if (!job.group.empty()) view.set("group", job.group);
  if (isWaiting) view.set("waiting", waitView(facts.wait));
  const Json result = dated(http::parseJson(job.result));
  // It stays known when a person has settled what was unknown.
  if (const Json* why = result.find("why")) {
    view.set("unknown", Json(result).set("why", whyView(*why->as<std::string>())));
  } else if (job.state == State::kNeedsPayment) {
    view.set("due", result);
  } else if (job.state == State::kCommitted) {
    view.set("booked", result);
  } else if (job.state == State::kNotCommitted) {
    view.set("failure", result);
  }
  if (const Json progress = http::parseJson(job.progress); progress.find("settled")) {
    view.set("settled", dated(*progress.find("settled")));
  }
  return view;
}

Json askedView(const Job& job) {
  Json view{{"asked", http::parseJson(job.content)}};
  if (job.kind != "receipt") return view;
  Faults faults;
  view.set("total", euros(readReceipt(*view.find("asked"), {}, faults).total()));
  const Json progress = http::parseJson(job.progress);
  const Json* added = progress.find("added");
  return view.set("added", added ? *added : Json(Json::List{}));
}

Json statusView(const Board::Facts& facts, int unfinished) {
  Json view{{"connected", facts.isConnected},
            {"serialNumber", facts.serialNumber},
            {"unfinished", unfinished},
            {"job", facts.job.empty() ? Json() : Json(facts.job)}};
  Json::List rates(facts.abilities.vatRates.begin(), facts.abilities.vatRates.end());
  Json::List terminals(facts.abilities.terminals.begin(), facts.abilities.terminals.end());
  view.set("vatRates", rates).set("terminals", terminals);
  if (!facts.wait.on.empty()) view.set("waiting", waitView(facts.wait));
  if (!facts.held.empty()) view.set("held", whyView(facts.held));
  return view;
}

Json totalsView(const Board::Facts& facts) {
  Json view = facts.totals;
  return view.set("serialNumber", facts.serialNumber).set("read", timeText(facts.read));
}

std::string metricsText(const Board::Facts& facts, int unfinished) {
  std::ostringstream out;
  out.precision(12);
  Family(out, "mirvane_connected", "gauge", "Whether the register answers.").add(facts.isConnected);
  Family(out, "mirvane_held", "gauge", "Whether a person has to look first.").add(!facts.held.empty());
  Family(out, "mirvane_paper_out", "gauge", "Whether the register waits for paper.").add(facts.wait.on == "paper");
  Family(out, "mirvane_unfinished", "gauge", "Jobs that are not over.").add(unfinished);
  Family outcomes(out, "mirvane_jobs_total", "counter", "Jobs that are over, by kind and state.");
  for (const auto& [job, count] : facts.outcomes) {
    outcomes.add(static_cast<double>(count), "kind=\"" + job.first + "\",state=\"" + job.second + "\"");
  }
  Family waits(out, "mirvane_waits_total", "counter", "Waits, by what for.");
  for (const auto& [on, count] : facts.waits) waits.add(static_cast<double>(count), "on=\"" + on + "\"");
  Family(out, "mirvane_repetitions_total", "counter", "Receipts that were rung up anew.")
      .add(static_cast<double>(facts.repetitions));
  Family(out, "mirvane_call_seconds", "histogram", "Calls of the component, most of them one exchange.")
      .add(facts.callSeconds);
  Family jobs(out, "mirvane_job_seconds", "histogram", "Jobs from queued to over, by kind.");
  for (const auto& [kind, histogram] : facts.jobSeconds) jobs.add(histogram, "kind=\"" + kind + "\"");
  return out.str();
}

}  // namespace mirvane::service
