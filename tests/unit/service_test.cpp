// Receipts over HTTP: what callers are told, and that each is sold once.
#include <gmock/gmock.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <fstream>

#include "campaign/machine.h"
#include "http/log_file.h"
#include "service/interface.h"
#include "service/sqlite_store.h"
#include "service/words.h"
#include "service/worker.h"

namespace {
/// Whether the database has written something that a power cut can take away.
bool isAtRisk = false;
/// Whether the disk takes nothing.
bool isReadOnly = false;
}  // namespace

// They stand in the C library's place: the database calls them.
extern "C" ssize_t writeWatched(int file, const void* bytes, std::size_t count, off64_t at) __asm__("pwrite64");
extern "C" int syncWatched(int file) __asm__("fdatasync");

ssize_t writeWatched(int file, const void* bytes, std::size_t count, off64_t at) {
  if (isReadOnly) {
    errno = EROFS;
    return -1;
  }
  isAtRisk = true;
  return syscall(SYS_pwrite64, file, bytes, count, at);
}

int syncWatched(int file) {
  isAtRisk = false;
  return static_cast<int>(syscall(SYS_fdatasync, file));
}

namespace mirvane::service {
namespace {

using campaign::LineKind;
using campaign::Machine;
using emulator::Code;
using emulator::Document;
using testing::Each;
using testing::HasSubstr;
using testing::Not;

const std::string kCoffee = R"("lines":[{"description":"ΚΑΦΕΣ","price":2.5,"vat":24}])";
const std::string kSold = "{" + kCoffee + R"(,"payments":[{"type":"cash","amount":5}]})";
constexpr TextView kRecords = u"C:\\service\\records";
const std::string kUnpaid = "{" + kCoffee + "}";

std::string textOf(const Json& json, const char* name) {
  const Json* value = json.find(name);
  const auto* text = value ? value->as<std::string>() : nullptr;
  return text ? *text : "";
}

class Service : public testing::Test {
 protected:
  Service() {
    std::filesystem::remove(path());
    start();
  }
  ~Service() override { end(); }

  void start() {
    store_ = std::make_unique<SqliteStore>(path());
    board_ = std::make_unique<Board>();
    worker_ = std::make_unique<Worker>(machine_.platform, *store_, *board_, Text(machine_.portName()), kRecords);
    interface_ = std::make_unique<Interface>(
        *store_, *board_, Interface::Options{tokens_.get(), 3, [] {}, [this] { return machine_.clock.sinceEpoch(); }});
  }
  void end() {
    interface_ = nullptr;
    worker_ = nullptr;
    board_ = nullptr;
    store_ = nullptr;
    machine_.hangUp();
  }
  void work() {
    while (worker_->step()) continue;
  }

  int ask(const std::string& method, const std::string& path, const std::string& body = {}) {
    http::Request request{method, path, {}, headers_, body};
    if (const std::size_t mark = path.find('?'); mark != std::string::npos) {
      request.path = path.substr(0, mark);
      request.query[path.substr(mark + 1, path.find('=') - mark - 1)] = path.substr(path.find('=') + 1);
    }
    const http::Answer answer = interface_->answer(request);
    body_ = answer.body;
    told_ = answer.type.find("json") == std::string::npos ? Json() : http::parseJson(answer.body);
    return answer.status;
  }
  int put(const std::string& path, const std::string& body = {}) { return ask("PUT", "/v1/" + path, body); }
  /// Puts, does all that there is to do, and tells what became of it.
  std::string stateAfter(const std::string& path, const std::string& body = {}) {
    put(path, body);
    work();
    ask("GET", "/v1/" + path.substr(0, path.find("/payments")));
    return textOf(told_, "state");
  }
  std::vector<std::string> faultsIn() {
    std::vector<std::string> places;
    for (const Json& error : *told_.find("errors")->as<Json::List>()) places.push_back(textOf(error, "where"));
    return places;
  }
  int receiptsSold() {
    int count = 0;
    for (const Document& document : machine_.device.roll().documents()) {
      count += document.kind == Document::Kind::kReceipt && document.state == Document::State::kClosed;
    }
    return count;
  }
  static std::string path() {
    return testing::TempDir() + testing::UnitTest::GetInstance()->current_test_info()->name() + ".service";
  }
  static void copyStore(const std::string& from, const std::string& to) {
    std::filesystem::copy_file(from, to, std::filesystem::copy_options::overwrite_existing);
  }

  Machine machine_{LineKind::kSerial};
  std::unique_ptr<Tokens> tokens_;
  std::unique_ptr<SqliteStore> store_;
  std::unique_ptr<Board> board_;
  std::unique_ptr<Worker> worker_;
  std::unique_ptr<Interface> interface_;
  std::map<std::string, std::string> headers_;
  Json told_;
  std::string body_;
};

TEST_F(Service, TheSameIdIsTheSameReceiptForEver) {
  EXPECT_EQ(stateAfter("receipts/a", kSold), "committed");
  EXPECT_EQ(put("receipts/a", R"({ "payments": [{"amount": 5.00, "type": "cash"}], )" + kCoffee + "}"), 200);
  EXPECT_EQ(put("receipts/a", kUnpaid), 409);
  EXPECT_EQ(put("cash/a", R"({"direction":"in","amount":5})"), 409);
  end();
  start();
  EXPECT_EQ(stateAfter("receipts/a", kSold), "committed");
  EXPECT_EQ(receiptsSold(), 1);
}

TEST_F(Service, WhatCannotBeDoneIsRefusedWithEachFaultsPlace) {
  work();
  const auto line = [](const std::string& members) { return R"({"lines":[{"description":"A",)" + members + "}]}"; };
  const struct {
    std::string path, body;
    std::vector<std::string> places;
  } kCases[] = {
      {"receipts/a", "{}", {"body/lines"}},
      {"receipts/a", "[]", {"body", "body/lines"}},
      {"receipts/a", line(R"("price":1,"vat":23)"), {"body/lines/0/vat"}},
      {"receipts/a", line(R"("price":1.001,"vat":24,"quantity":0)"), {"body/lines/0/quantity", "body/lines/0/price"}},
      {"receipts/a", line(R"("price":0,"vat":24)"), {"body/lines"}},
      {"receipts/a",
       line(R"("price":1,"vat":24,"color":"red","comment":"漢字")"),
       {"body/lines/0/comment", "body/lines/0/color"}},
      {"receipts/a",
       R"({"lines":[{"type":"discount","amount":1}]})",
       {"body/lines/0/on", "body/lines/0/amount", "body/lines/0"}},
      {"receipts/a", "{" + kCoffee + R"(,"total":3})", {"body/total"}},
      {"receipts/a", "{" + kCoffee + R"(,"vatNumber":"123456789"})", {"body/vatNumber"}},
      {"receipts/a", "{" + kCoffee + R"(,"payments":[{"type":"card","amount":3}]})", {"body/payments/0/amount"}},
      {"receipts/a", "{" + kCoffee + R"(,"payments":[{"type":"card","terminal":2}]})", {"body/payments/0/terminal"}},
      {"receipts/a", "{" + kCoffee + R"(,"payments":[{"type":"cash"},{"type":"cash"}]})", {"body/payments/1/amount"}},
      {"cash/a", R"({"direction":"up","amount":-1})", {"body/direction", "body/amount"}},
      {"display/a", R"({"lines":["A/B"]})", {"body/lines/0"}},
      {"drawer/a", R"({"wide":true})", {"body/wide"}},
  };
  for (const auto& [path, body, places] : kCases) {
    EXPECT_EQ(put(path, body), 422) << body;
    EXPECT_EQ(faultsIn(), places) << body;
  }
  EXPECT_TRUE(store_->list({}).empty());
}

TEST_F(Service, ReceiptsHoldAllThatARegisterPrints) {
  EXPECT_EQ(stateAfter("receipts/a", R"({"vatNumber":"090000045","footer":["ΚΑΛΗ ΧΡΟΝΙΑ"],"total":6.3,"lines":[
      {"description":"ΚΑΦΕΣ","quantity":1.5,"price":2,"vat":24,"comment":"ΣΚΕΤΟΣ","department":2},
      {"type":"discount","percent":10},{"description":"ΨΩΜΙ","price":4,"vat":13},{"type":"markup","on":"subtotal","amount":0.6},
      {"type":"refund","description":"ΨΩΜΙ","price":1,"vat":13},{"type":"comment","text":"ΓΕΙΑ"}],
      "payments":[{"type":"card","amount":1},{"type":"cheque","amount":2},{"type":"cash"}]})"),
            "committed")
      << body_;
  for (const char16_t* text : {u"090000045", u"ΚΑΛΗ ΧΡΟΝΙΑ", u"ΣΚΕΤΟΣ", u"ΓΕΙΑ"}) {
    EXPECT_EQ(machine_.linesPrinted(text), 1) << toUtf8(text);
  }
}

TEST_F(Service, ADeclinedCardAsksForAnotherPayment) {
  machine_.device.cards().options.next = {Code::kCardFailed};
  EXPECT_EQ(stateAfter("receipts/a", "{" + kCoffee + R"(,"payments":[{"type":"card","terminal":1}]})"),
            "needs-payment");
  EXPECT_EQ(textOf(*told_.find("due")->find("failure"), "name"), "card-failed");
  EXPECT_EQ(put("receipts/a/payments/2", R"({"type":"cash"})"), 409);
  EXPECT_EQ(stateAfter("receipts/a/payments/1", R"({"type":"cash"})"), "committed");
  EXPECT_EQ(put("receipts/a/payments/1", R"({"type":"cash"})"), 200);
  EXPECT_EQ(put("receipts/a/payments/1", R"({"type":"cheque"})"), 409);
  EXPECT_EQ(put("receipts/a/payments/2", R"({"type":"cash"})"), 409);
  EXPECT_EQ(machine_.cardCharges(), 0);
}

TEST_F(Service, WhatIsQueuedOrWantsPaymentIsCancelled) {
  EXPECT_EQ(stateAfter("receipts/a", kUnpaid), "needs-payment");
  put("receipts/b", kSold);
  EXPECT_EQ(ask("DELETE", "/v1/receipts/b"), 200);
  EXPECT_EQ(ask("DELETE", "/v1/receipts/a"), 202);
  work();
  EXPECT_EQ(ask("DELETE", "/v1/receipts/a"), 200);
  EXPECT_EQ(textOf(told_, "state"), "not-committed");
  EXPECT_FALSE(machine_.device.fiscal().receipt);
  EXPECT_EQ(stateAfter("receipts/c", kSold), "committed");
  EXPECT_EQ(ask("DELETE", "/v1/receipts/c"), 409);
  EXPECT_EQ(receiptsSold(), 1);
}

TEST_F(Service, PaperIsWaitedForInTheMiddleOfAReceipt) {
  work();
  machine_.faults.add("after 1 60s paper-end");
  const std::string twice = R"({"lines":[{"description":"A","price":1,"vat":24},{"description":"B","price":1,"vat":24}],
      "payments":[{"type":"cash"}]})";
  std::vector<std::string> waits;
  board_->log = [&](const char* event, const Json& members) {
    if (event == std::string("waiting")) waits.push_back(textOf(members, "on"));
  };
  EXPECT_EQ(stateAfter("receipts/a", twice), "committed");
  EXPECT_THAT(waits, Each(std::string("paper")));
  EXPECT_FALSE(waits.empty());
  EXPECT_EQ(receiptsSold(), 1);
}

TEST_F(Service, EveryOtherDocumentIsDoneOnceToo) {
  stateAfter("receipts/a", kSold);
  EXPECT_EQ(stateAfter("cash/c", R"({"direction":"in","amount":20,"description":"ΚΕΡΜΑΤΑ"})"), "committed");
  EXPECT_EQ(stateAfter("drawer/d"), "committed");
  EXPECT_EQ(stateAfter("display/e", R"({"lines":["ΓΕΙΑ","ΣΟΥ"]})"), "committed");
  EXPECT_EQ(stateAfter("reports/x/x"), "committed");
  EXPECT_EQ(stateAfter("reports/z/z"), "committed");
  EXPECT_EQ(ask("GET", "/v1/reports/z/z/files/MVE250000170001_b.txt"), 200);
  EXPECT_THAT(body_, HasSubstr("0001"));
  EXPECT_EQ(put("reports/z/z"), 200);
  EXPECT_EQ(machine_.device.fiscal().closures, 1);
}

TEST_F(Service, WhatIsToldOrDoneIsOnTheDiskBefore) {
  work();
  machine_.tap.moment = [this] {
    const std::string last = machine_.tap.commands.back();
    EXPECT_FALSE(isAtRisk && (last.starts_with("3/S") || last.starts_with("5/1/"))) << last;
  };
  EXPECT_EQ(stateAfter("receipts/a", kSold), "committed");
  put("receipts/b", kSold);
  EXPECT_TRUE(isAtRisk) << "nobody has been told";
  put("receipts/b", kSold);
  EXPECT_FALSE(isAtRisk) << "told when the time is over";
  headers_["prefer"] = "wait=0";
  put("receipts/c", kSold);
  EXPECT_FALSE(isAtRisk) << "told at once";
  work();
}

TEST_F(Service, ADatabaseThatCannotBeWrittenSellsNothing) {
  for (const bool isBegun : {false, true}) {
    const std::string id = isBegun ? "receipts/begun" : "receipts/new";
    work();
    if (isBegun) put(id, kSold);
    isReadOnly = true;
    EXPECT_EQ(put(isBegun ? "receipts/another" : id, kSold), 503);
    EXPECT_EQ(textOf(told_, "title"), "store");
    const int sold = receiptsSold();
    work();
    EXPECT_EQ(receiptsSold(), sold);
    isReadOnly = false;
    EXPECT_EQ(stateAfter(id, kSold), "committed");
    EXPECT_EQ(receiptsSold(), sold + 1);
  }
}

TEST_F(Service, ADatabaseThatCannotBeWrittenIsToldAtTheStart) {
  namespace fs = std::filesystem;
  const fs::path folder = fs::path(testing::TempDir()) / ("read-only-" + std::to_string(getpid()));
  const fs::path file = folder / "db";
  fs::create_directory(folder);
  std::make_unique<SqliteStore>(file.string());
  const struct {
    fs::path path;
    unsigned file, folder;
  } kCases[] = {{file, 0444, 0777}, {file, 0666, 0555}, {folder / "new", 0666, 0555}};
  for (const auto& [path, fileRights, folderRights] : kCases) {
    fs::permissions(file, fs::perms(fileRights));
    fs::permissions(folder, fs::perms(folderRights));
    // To the superuser everything is granted.
    const uid_t user = geteuid();
    ASSERT_TRUE(user != 0 || seteuid(65534) == 0);
    std::string told;
    try {
      SqliteStore store(path.string());
    } catch (const StoreError& error) {
      told = error.what();
    }
    ASSERT_TRUE(user != 0 || seteuid(0) == 0);
    EXPECT_THAT(told, HasSubstr("cannot be written")) << fileRights << " " << folderRights;
  }
  fs::permissions(folder, fs::perms::all);
  fs::remove_all(folder);
}

TEST_F(Service, AStoreOlderThanTheRegisterIsTold) {
  stateAfter("receipts/a", kSold);
  put("receipts/b", kSold);
  end();
  copyStore(path(), path() + ".yesterday");
  start();
  EXPECT_EQ(stateAfter("receipts/b", kSold), "committed");
  stateAfter("receipts/c", kSold);
  end();
  copyStore(path() + ".yesterday", path());
  start();
  EXPECT_EQ(stateAfter("receipts/b", kSold), "unknown");
  EXPECT_EQ(*told_.find("unknown")->find("before")->find("receipts")->as<double>(), 1);
  for (int looks = 0; looks < 2; ++looks) {
    EXPECT_EQ(put("receipts/c", kSold), 503);
    EXPECT_EQ(ask("GET", "/readyz"), 503);
    work();
  }
  EXPECT_EQ(ask("PUT", "/v1/jobs/b/settlement", R"({"was":"perhaps"})"), 422);
  EXPECT_EQ(ask("PUT", "/v1/jobs/b/settlement", R"({"was":"committed"})"), 200);
  EXPECT_TRUE(told_.find("unknown") && !told_.find("booked")) << body_;
  EXPECT_EQ(ask("POST", "/v1/register/accept"), 202);
  work();
  EXPECT_EQ(stateAfter("receipts/d", kSold), "committed");
  EXPECT_EQ(receiptsSold(), 4);
}

TEST_F(Service, AnotherRegisterDoesNotKnowWhatWasBegun) {
  EXPECT_EQ(stateAfter("receipts/a", kUnpaid), "needs-payment");
  end();
  machine_.device.fiscal() = {};
  machine_.device.fiscal().serialNumber = "OTHER1";
  start();
  work();
  ask("GET", "/v1/receipts/a");
  EXPECT_EQ(textOf(told_, "state"), "unknown");
  EXPECT_EQ(stateAfter("receipts/b", kSold), "committed");
}

TEST_F(Service, TheQueueIsBounded) {
  for (const char* id : {"a", "b", "c"}) EXPECT_EQ(put(std::string("receipts/") + id, kSold), 202);
  EXPECT_EQ(put("receipts/d", kSold), 429);
  work();
  EXPECT_EQ(put("receipts/d", kSold), 202);
}

TEST_F(Service, PagesAndChangesMissNothing) {
  for (const char* id : {"a", "b", "c"}) put(std::string("receipts/") + id, kSold);
  const auto ids = [this] {
    std::string all;
    for (const Json& job : *told_.find("jobs")->as<Json::List>()) all += textOf(job, "id");
    return all;
  };
  ask("GET", "/v1/receipts?before=3");
  EXPECT_EQ(ids(), "ba");
  work();
  ask("GET", "/v1/changes?after=3");
  EXPECT_EQ(ids(), "abc");
  ask("GET", "/v1/jobs?state=queued");
  EXPECT_EQ(ids(), "");
  EXPECT_EQ(ask("GET", "/v1/jobs?state=odd"), 400);
}

TEST_F(Service, HistogramsAreWhatPrometheusReads) {
  put("receipts/a", kSold);
  machine_.clock.advance(45);
  stateAfter("receipts/b", kSold);
  ASSERT_EQ(ask("GET", "/metrics"), 200);
  std::map<std::string, double> values;
  double inBuckets = 0;
  std::istringstream lines(body_);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t blank = line.rfind(' ');
    if (line.starts_with("#")) continue;
    const double value = values[line.substr(0, blank)] = std::stod(line.substr(blank));
    if (line.find("_bucket{") != std::string::npos) {
      EXPECT_LE(line.find("le=\"0.01\"") == std::string::npos ? inBuckets : 0, value) << line;
      inBuckets = value;
    }
    EXPECT_TRUE(line.find("_count") == std::string::npos || value == inBuckets) << line;
  }
  EXPECT_EQ(values["mirvane_job_seconds_bucket{kind=\"receipt\",le=\"30\"}"], 1) << body_;
  EXPECT_EQ(values["mirvane_job_seconds_bucket{kind=\"receipt\",le=\"60\"}"], 2) << body_;
  EXPECT_GE(values["mirvane_job_seconds_sum{kind=\"receipt\"}"], 45);
  EXPECT_GT(values["mirvane_call_seconds_count"], 10);
  EXPECT_EQ(values["mirvane_call_seconds_bucket{le=\"+Inf\"}"], values["mirvane_call_seconds_count"]);
}

TEST_F(Service, OthersNeedATokenThatIsNotTakenBack) {
  const std::string file = testing::TempDir() + "service.tokens";
  std::filesystem::remove(file);
  tokens_ = std::make_unique<Tokens>(file);
  const std::string token = tokens_->add("till 1");
  EXPECT_EQ(tokens_->add("till 1"), "");
  end();
  start();
  const auto status = [this](const std::string& given) {
    headers_["authorization"] = given;
    return ask("GET", "/v1/status");
  };
  for (const std::string given : {"", "Bearer ", "Bearer mv_1", "Basic x"}) EXPECT_EQ(status(given), 401) << given;
  EXPECT_EQ(status("Bearer " + token), 200);
  std::ifstream lines(file);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(lines), {}), sha256(token) + " till 1\n");
  std::filesystem::last_write_time(file, std::filesystem::last_write_time(file) - std::chrono::seconds(5));
  Tokens(file).remove("till 1");
  EXPECT_EQ(status("Bearer " + token), 401);
  EXPECT_EQ(ask("GET", "/healthz"), 200);
}

TEST(ServiceWords, PaperHasARemedyHoweverTheRegisterTellsOfIt) {
  for (const Wait& wait : {Wait{"paper", 25, "Paper End"}, Wait{"paper", 0, "DEVICE STATUS:Τέλος Χαρτιού !"}}) {
    EXPECT_NE(waitView(wait).find("remedy"), nullptr) << wait.text;
  }
}

TEST(ServiceLog, TwoFullFilesAreKept) {
  const std::filesystem::path file = testing::TempDir() + "service.log";
  std::filesystem::remove(file);
  for (const char* line : {"one\n", "two\n", "three\n", "four\n", "five\n"}) addToLog(file, line, 10);
  const auto lines = [](const std::filesystem::path& path) {
    std::ifstream stream(path);
    return std::string(std::istreambuf_iterator<char>(stream), {});
  };
  EXPECT_EQ(lines(file), "four\nfive\n");
  EXPECT_EQ(lines(file.string() + ".old"), "three\n");
}

TEST_F(Service, TheFlightRecordHasTheLineAndNothingOfTheCaller) {
  stateAfter("receipts/before", kSold);
  EXPECT_TRUE(machine_.disk.contents.empty());
  end();
  machine_.disk.recordFolder = kRecords;
  start();
  headers_["authorization"] = "Bearer mv_secret";
  EXPECT_EQ(stateAfter("receipts/caller-7", "{" + kCoffee + R"(,"payments":[{"type":"card","terminal":1}]})"),
            "committed");
  end();
  ASSERT_EQ(machine_.disk.contents.size(), 1U);
  const std::string& record = machine_.disk.contents.begin()->second;
  for (const char* there : {" started ", " call          0 ItemSale\r\n", "<STX>5/2/", " ended         0 Payment,"})
    EXPECT_THAT(record, HasSubstr(there));
  for (const char* absent : {"mv_secret", "caller-7"}) EXPECT_THAT(record, Not(HasSubstr(absent)));
}

TEST(ServiceTokens, TheHashIsTheStandards) {
  EXPECT_EQ(sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(sha256(std::string(119, 'a')), "31eba51c313a5c08226adf18d4a359cfdfd8d2e816b13f4af952f7ea6584dcfb");
}

}  // namespace
}  // namespace mirvane::service
