#include "service/interface.h"

#include <algorithm>
#include <charconv>

#include "service/assets.h"
#include "service/order.h"
#include "service/views.h"
#include "service/words.h"

namespace mirvane::service {
namespace {

using http::Answer;
using http::Refusal;
using http::Request;

/// What a caller waits for at most, and unless it says so.
constexpr int kLongestWait = 600;
constexpr std::size_t kLongestId = 64;

Json named(const char* name) { return {{"name", name}}; }

bool isId(const std::string& text) {
  return !text.empty() && text.size() <= kLongestId && std::ranges::all_of(text, [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
           c == '.';
  });
}

int numberIn(const std::string& text, const std::string& where, int least, int most) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc() && end == text.data() + text.size() && number >= least && number <= most) return number;
  throw Refusal(400, "a number from " + std::to_string(least) + " to " + std::to_string(most) + " is expected", where);
}

Json bodyOf(const Request& request) {
  try {
    return http::parseJson(request.body.empty() ? "{}" : request.body);
  } catch (const http::JsonError& error) {
    throw Refusal(400, std::string("the body is no JSON: ") + error.what(), "body");
  }
}

void refuse(const Faults& faults) {
  if (faults.all.empty()) return;
  Json::List errors;
  for (const Faults::Fault& fault : faults.all)
    errors.push_back(Json{{"where", "body" + fault.where}, {"text", fault.text}});
  throw Refusal(422, "what was asked for cannot be done", "", named("invalid").set("errors", errors));
}

/// Reads a job's content for its faults alone.
void check(const std::string& kind, const Json& body, const Abilities& abilities) {
  Faults faults;
  if (kind == "receipt") {
    readReceipt(body, abilities, faults);
  } else if (kind == "cash") {
    readCash(body, faults);
  } else if (kind == "display") {
    readDisplay(body, faults);
  } else {
    readNothing(body, faults);
  }
  refuse(faults);
}

/// The pieces of a path.
std::vector<std::string> piecesOf(const std::string& path) {
  std::vector<std::string> pieces;
  for (std::size_t at = 1; at <= path.size();) {
    const std::size_t end = std::min(path.find('/', at), path.size());
    pieces.push_back(path.substr(at, end - at));
    at = end + 1;
  }
  return pieces;
}

/// The number behind "wait=" in a Prefer header; nothing without one.
std::optional<int> preferredWait(const Request& request) {
  const std::string prefer = request.header("prefer");
  const std::size_t at = prefer.find("wait=");
  if (at == std::string::npos) return std::nullopt;
  const std::string digits = prefer.substr(at + 5, prefer.find_first_of(",; ", at) - at - 5);
  return numberIn(digits, "header/Prefer", 0, kLongestWait);
}

}  // namespace

/// A request on its way to its handler.
struct Interface::Call {
  Request& request;
  /// The kind of job that the path is about, empty for any.
  std::string kind;
  /// What stands in the places of the path's stars.
  std::vector<std::string> items;

  std::string query(const char* name) const {
    const auto found = request.query.find(name);
    return found == request.query.end() ? "" : found->second;
  }
  std::int64_t number(const char* name, int otherwise, int most) const {
    const std::string text = query(name);
    return text.empty() ? otherwise : numberIn(text, "query/" + std::string(name), 0, most);
  }
};

struct Interface::Route {
  const char* method;
  const char* path;
  const char* kind;
  Answer (Interface::*handle)(Call& call);
  bool isOpen = false;
};

const Interface::Route Interface::kRoutes[] = {
    {"PUT", "/v1/receipts/*", "receipt", &Interface::put},
    {"PUT", "/v1/reports/x/*", "x", &Interface::put},
    {"PUT", "/v1/reports/z/*", "z", &Interface::put},
    {"PUT", "/v1/cash/*", "cash", &Interface::put},
    {"PUT", "/v1/drawer/*", "drawer", &Interface::put},
    {"PUT", "/v1/display/*", "display", &Interface::put},
    {"GET", "/v1/receipts/*", "receipt", &Interface::get},
    {"GET", "/v1/reports/x/*", "x", &Interface::get},
    {"GET", "/v1/reports/z/*", "z", &Interface::get},
    {"GET", "/v1/cash/*", "cash", &Interface::get},
    {"GET", "/v1/drawer/*", "drawer", &Interface::get},
    {"GET", "/v1/display/*", "display", &Interface::get},
    {"GET", "/v1/jobs/*", "", &Interface::get},
    {"DELETE", "/v1/receipts/*", "receipt", &Interface::cancel},
    {"DELETE", "/v1/jobs/*", "", &Interface::cancel},
    {"PUT", "/v1/receipts/*/payments/*", "receipt", &Interface::putPayment},
    {"PUT", "/v1/jobs/*/settlement", "", &Interface::settle},
    {"GET", "/v1/reports/z/*/files/*", "z", &Interface::getFile},
    {"GET", "/v1/receipts", "receipt", &Interface::list},
    {"GET", "/v1/jobs", "", &Interface::list},
    {"GET", "/v1/changes", "", &Interface::changes},
    {"GET", "/v1/events", "", &Interface::events},
    {"GET", "/v1/status", "", &Interface::status},
    {"GET", "/v1/totals", "", &Interface::totals},
    {"POST", "/v1/register/accept", "", &Interface::acceptRegister},
    {"POST", "/v1/register/void", "", &Interface::voidOpen},
    {"GET", "/metrics", "", &Interface::metrics},
    {"GET", "/healthz", "", &Interface::isHealthy, true},
    {"GET", "/readyz", "", &Interface::isReady, true},
};

Interface::Interface(Store& store, Board& board, Options options)
    : store_(store), board_(board), options_(std::move(options)) {}

Answer Interface::problem(const Refusal& refusal) {
  const Json* given = refusal.more.find("name");
  const char* const usual = refusal.status == 401   ? "token"
                            : refusal.status == 403 ? "not-for-you"
                            : refusal.status == 404 ? "nothing-there"
                            : refusal.status >= 500 ? "trouble"
                                                    : "request";
  const std::string name = given ? *given->as<std::string>() : usual;
  Json view{{"type", "/service.md#" + name}, {"title", name}, {"status", refusal.status}, {"detail", refusal.what()}};
  if (!refusal.where.empty()) view.set("where", refusal.where);
  Json more = refusal.more;
  more.erase("name");
  Answer answer{refusal.status, "application/problem+json", view.update(more).dump() + "\n"};
  if (refusal.status == 401) answer.headers.emplace_back("WWW-Authenticate", "Bearer");
  return answer;
}

Answer Interface::answer(Request& request) {
  try {
    return route(request);
  } catch (const Refusal& refusal) {
    return problem(refusal);
  } catch (const StoreError& error) {
    return problem(Refusal(503, error.what(), "", named("store")));
  }
}

Answer Interface::route(Request& request) {
  if (const auto* asset = findAsset(request.path); asset && request.method == "GET") {
    return {200, std::string(asset->type), std::string(asset->bytes)};
  }
  const std::vector<std::string> pieces = piecesOf(request.path);
  std::string allowed;
  for (const Route& route : kRoutes) {
    Call call{request, route.kind, {}};
    const std::vector<std::string> pattern = piecesOf(route.path);
    bool isMatch = pattern.size() == pieces.size();
    for (std::size_t i = 0; isMatch && i < pieces.size(); ++i) {
      if (pattern[i] == "*") call.items.push_back(pieces[i]);
      isMatch = pattern[i] == "*" || pattern[i] == pieces[i];
    }
    if (!isMatch) continue;
    allowed.append(allowed.empty() ? "" : ", ").append(route.method);
    if (request.method != route.method) continue;
    if (!route.isOpen) requireToken(request);
    // Whatever anybody is told, the store can tell again. Who waits is told more when there is more.
    store_.flush();
    return (this->*route.handle)(call);
  }
  if (allowed.empty()) throw Refusal(404, "no such path", "path");
  Answer refused = problem(Refusal(405, "not with " + request.method));
  refused.headers.emplace_back("Allow", allowed);
  return refused;
}

void Interface::requireToken(const Request& request) const {
  constexpr std::string_view kScheme = "Bearer ";
  if (!options_.tokens) return;
  const std::string given = request.header("authorization");
  if (given.starts_with(kScheme) && !options_.tokens->ownerOf(given.substr(kScheme.size())).empty()) return;
  throw Refusal(401, "a token is expected", "header/Authorization");
}

// ---- Jobs

Answer Interface::put(Call& call) {
  const std::string& id = call.items[0];
  if (!isId(id)) throw Refusal(400, "an id has 1 to 64 letters, digits, \"-\", \"_\" and \".\"", "path");
  const std::optional<int> wait = preferredWait(call.request);
  const Json body = bodyOf(call.request);
  Job job;
  job.id = id;
  job.kind = call.kind;
  job.content = canonical(body);
  job.registerName = call.query("register");
  job.group = call.query("group");
  std::optional<Job> there = store_.find(id);
  if (!there) {
    if (!store_.isThere(job.registerName, job.group)) throw Refusal(404, "no such register or group", "query");
    const bool isOurs = job.group.empty() && (job.registerName.empty() || job.registerName == options_.registerName);
    check(call.kind, body, isOurs ? board_.facts().abilities : Abilities());
    if (const std::string held = board_.facts().held; isOurs && !held.empty()) {
      throw Refusal(503, "a person has to look at the register first: " + held, "", named("held"));
    }
    if (store_.unfinished() >= options_.mostUnfinished)
      throw Refusal(429, "too much is waiting", "", named("queue-full"));
    job.created = job.changed = options_.now();
    if (store_.add(job, wait == 0)) {
      there = job;
      board_.log("queued", {{"id", id}, {"kind", call.kind}});
      options_.wake();
    } else {
      there = store_.find(id);
    }
  }
  const bool isElsewhere = (!job.registerName.empty() && there->registerName != job.registerName) ||
                           (!job.group.empty() && there->group != job.group);
  if (there->kind != job.kind || there->content != job.content || isElsewhere) {
    throw Refusal(409, "this id stands for something else", "path", named("conflict"));
  }
  Answer answer = answerTo(call, *there);
  const bool isEnough = isOver(there->state) || there->state == State::kNeedsPayment;
  if (!isEnough) answer.waitSeconds = wait.value_or(kLongestWait);
  if (wait) answer.headers.emplace_back("Preference-Applied", "wait=" + std::to_string(*wait));
  return answer;
}

Answer Interface::answerTo(const Call&, const Job& job) {
  const bool isEnough = isOver(job.state) || job.state == State::kNeedsPayment;
  return http::json(jobView(job, board_.facts()), isEnough ? 200 : 202);
}

Job Interface::required(const Call& call) {
  std::optional<Job> job = store_.find(call.items[0]);
  if (!job || (!call.kind.empty() && job->kind != call.kind)) throw Refusal(404, "no such id", "path");
  return *job;
}

void Interface::change(Job& job) {
  job.changed = options_.now();
  if (!store_.save(job)) throw Refusal(409, "it is changing just now", "path", named("changing"));
  board_.change([](Board::Facts&) {});
  options_.wake();
}

Answer Interface::get(Call& call) {
  const Job job = required(call);
  return http::json(jobView(job, board_.facts()).update(askedView(job)));
}

Answer Interface::cancel(Call& call) {
  Job job = required(call);
  if (job.state == State::kQueued) {
    job.state = State::kNotCommitted;
    job.result = failureView(0, "cancelled").dump(false);
    change(job);
    board_.log("over", {{"id", job.id}, {"kind", job.kind}, {"state", nameOf(job.state)}});
  } else if (job.state == State::kNeedsPayment) {
    job.state = State::kPrinting;
    job.progress = http::parseJson(job.progress).set("cancel", true).dump(false);
    change(job);
  } else if (job.state == State::kPrinting && job.registerName != options_.registerName) {
    throw Refusal(409, "only the service of " + job.registerName + " can stop it", "path", named("changing"));
  } else if (job.state == State::kPrinting) {
    board_.wish("cancel " + job.id);
  } else if (job.state != State::kNotCommitted) {
    throw Refusal(409, "it is over", "path", named("over"));
  }
  return answerTo(call, job);
}

Answer Interface::putPayment(Call& call) {
  const int number = numberIn(call.items[1], "path", 1, 1000);
  const std::optional<int> wait = preferredWait(call.request);
  const Json body = bodyOf(call.request);
  Job job = required(call);
  Json progress = http::parseJson(job.progress);
  const Json* list = progress.find("added");
  Json::List added = list ? *list->as<Json::List>() : Json::List{};
  const auto index = static_cast<std::size_t>(number) - 1;
  if (index < added.size()) {
    if (canonical(added[index]) != canonical(body))
      throw Refusal(409, "this payment is another", "path", named("conflict"));
  } else {
    Faults faults;
    const Payment payment = readPayment(body, "", board_.facts().abilities, faults);
    refuse(faults);
    if (job.state != State::kNeedsPayment)
      throw Refusal(409, "no payment is wanted", "path", named("no-payment-wanted"));
    if (index > added.size())
      throw Refusal(409, "the next one is " + std::to_string(added.size() + 1), "path", named("conflict"));
    const double remaining = *http::parseJson(job.result).find("remaining")->as<double>();
    if (payment.type == "card" && payment.amount && euros(*payment.amount) > remaining + 0.001) {
      faults.add("/amount", "a card gives no change");
      refuse(faults);
    }
    added.push_back(body);
    job.progress = progress.set("added", added).dump(false);
    job.state = State::kPrinting;
    change(job);
  }
  Answer answer = answerTo(call, job);
  if (job.state == State::kPrinting) answer.waitSeconds = wait.value_or(kLongestWait);
  return answer;
}

Answer Interface::settle(Call& call) {
  const Json body = bodyOf(call.request);
  const Json* was = body.find("was");
  const auto* word = was ? was->as<std::string>() : nullptr;
  if (!word || (*word != "committed" && *word != "not-committed")) {
    Faults faults;
    faults.add("/was", "one of these is expected: committed, not-committed");
    refuse(faults);
  }
  Job job = required(call);
  const State state = *word == "committed" ? State::kCommitted : State::kNotCommitted;
  Json progress = http::parseJson(job.progress);
  if (progress.find("settled") && job.state == state) return answerTo(call, job);
  if (job.state != State::kUnknown) throw Refusal(409, "nothing about it is unknown", "path", named("over"));
  job.progress = progress.set("settled", Json{{"was", *word}, {"time", options_.now()}}).dump(false);
  job.state = state;
  change(job);
  board_.log("settled", {{"id", job.id}, {"was", *word}});
  return answerTo(call, job);
}

Answer Interface::getFile(Call& call) {
  const Job job = required(call);
  const auto bytes = store_.file(job.id, call.items[1]);
  if (!bytes) throw Refusal(404, "no such file", "path");
  return {200, "application/octet-stream", *bytes};
}

// ---- Several

Answer Interface::list(Call& call) {
  Store::Page page;
  page.kind = call.kind.empty() ? call.query("kind") : call.kind;
  page.state = call.query("state");
  page.from = call.number("before", 0, 2'000'000'000);
  page.limit = static_cast<int>(std::max<std::int64_t>(call.number("limit", 50, 200), 1));
  const auto* name = std::find(std::begin(kStateNames), std::end(kStateNames), page.state);
  if (!page.state.empty() && name == std::end(kStateNames)) throw Refusal(400, "no such state", "query/state");
  const std::vector<Job> jobs = store_.list(page);
  const Board::Facts facts = board_.facts();
  Json::List views;
  for (const Job& job : jobs) views.push_back(jobView(job, facts));
  Json view{{"jobs", views}};
  if (static_cast<int>(jobs.size()) == page.limit) view.set("before", jobs.back().place);
  return http::json(view);
}

Answer Interface::changes(Call& call) {
  Store::Page page;
  page.isChanges = true;
  page.from = call.number("after", 0, 2'000'000'000);
  page.limit = static_cast<int>(std::max<std::int64_t>(call.number("limit", 50, 200), 1));
  const Board::Facts facts = board_.facts();
  Json::List views;
  std::int64_t after = page.from;
  for (const Job& job : store_.list(page)) {
    views.push_back(jobView(job, facts));
    after = job.version;
  }
  Answer answer = http::json(Json{{"jobs", views}, {"after", after}});
  if (views.empty()) answer.waitSeconds = preferredWait(call.request).value_or(0);
  return answer;
}

Answer Interface::events(Call&) {
  Answer answer{200, "text/event-stream", ""};
  answer.isStream = true;
  return answer;
}

// ---- The register

Answer Interface::status(Call&) { return http::json(statusView(board_.facts(), store_.unfinished())); }

Answer Interface::totals(Call&) {
  const Board::Facts facts = board_.facts();
  if (facts.read == 0) throw Refusal(503, "the register has not answered yet", "", named("not-connected"));
  return http::json(totalsView(facts));
}

Answer Interface::acceptRegister(Call&) {
  if (board_.facts().held.empty()) throw Refusal(409, "nothing is held", "", named("over"));
  board_.wish("accept");
  options_.wake();
  return http::json(statusView(board_.facts(), store_.unfinished()), 202);
}

Answer Interface::voidOpen(Call&) {
  const std::optional<Job> begun = store_.claim();
  if (begun && begun->state == State::kNeedsPayment)
    throw Refusal(409, "the open receipt waits for a payment", "", named("over"));
  board_.wish("void");
  options_.wake();
  return http::json(statusView(board_.facts(), store_.unfinished()), 202);
}

Answer Interface::isHealthy(Call&) { return http::json(Json{{"healthy", true}}); }

Answer Interface::isReady(Call&) {
  const Board::Facts facts = board_.facts();
  const bool isReady = facts.isConnected && facts.held.empty();
  return http::json(Json{{"ready", isReady}, {"connected", facts.isConnected}, {"held", !facts.held.empty()}},
                    isReady ? 200 : 503);
}

Answer Interface::metrics(Call&) {
  return {200, "text/plain; version=0.0.4", metricsText(board_.facts(), store_.unfinished())};
}

}  // namespace mirvane::service
