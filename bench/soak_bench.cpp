// Whether a till that runs for weeks stays as it was on its first day: soak-bench SERIAL-PORT NETWORK-PORT.
// Over each port 10,000 receipts (an item, a payment in cash, the close) and a Z report with its journal after every
// 200: a time and a memory that grow show as ratios above 1. The register is a process of its own, so that what it
// keeps is not counted here. The link's fixed pauses are real on the serial line (1 ms an exchange). On the network
// (50 ms an exchange) they would make more than half an hour of it, so there time jumps over them; what is waited for
// the register is real on both.

#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <vector>

#include "embedding/component.h"
#include "embedding/till.h"
#include "records/cls_daily_acc.h"
#include "text/code_page.h"

namespace mirvane::bench {
namespace {

constexpr int kReceipts = 10000;
constexpr int kEarly = 1000;
constexpr int kDay = 200;  // receipts

[[noreturn]] void fail(const std::string& what) {
  std::fprintf(stderr, "soak-bench: %s\n", what.c_str());
  std::exit(1);
}

/// The machine's time, but for pauses, which pass at once.
class HurriedClock : public platform::Clock {
 public:
  double secondsSinceMidnight() override { return std::fmod(host_.secondsSinceMidnight() + skipped_, 86400); }
  double elapsed() override { return host_.elapsed() + skipped_; }
  platform::LocalTime localTime() override { return host_.localTime(); }
  std::int64_t sinceEpoch() override { return host_.sinceEpoch(); }
  int zoneAt(std::int64_t sinceEpoch) override { return host_.zoneAt(sinceEpoch); }
  void sleep(std::uint32_t milliseconds) override { skipped_ += milliseconds / 1000.0; }

 private:
  platform::Clock& host_ = platform::hostPlatform().clock;
  double skipped_ = 0;
};

class Till {
 public:
  explicit Till(const Text& port) { run("Connect_", port); }
  ~Till() { till_.call("DisConnect_", Text()); }
  Till(const Till&) = delete;
  Till& operator=(const Till&) = delete;

  void sellReceipt() {
    run("ItemSale", u"Καφές", 1.0, 2.5, 24.0, std::int16_t{1});
    run("Payment", std::int16_t{1}, u"ΜΕΤΡΗΤΑ", 5.0, std::int16_t{0}, std::int16_t{0});
  }
  void closeDay() {
    run("getDailyTotals", *totals_);
    if (totals_->LegalReceiptCount != kDay) fail("the register booked another number of receipts");
    run("issueZReport");
  }

 private:
  template <class... A>
  void run(const char* member, A&&... arguments) {
    if (till_.call(member, std::forward<A>(arguments)...)) return;
    fail(std::string(member) + ": " + std::to_string(till_.Result) + " " + toUtf8(till_.Exresult));
  }

  embedding::Till till_;
  std::shared_ptr<clsDailyAcc> totals_ = std::make_shared<clsDailyAcc>();
};

struct Sample {
  double milliseconds;    // a receipt takes, of the latest day the median
  double heap, resident;  // bytes
};

Sample sample(std::vector<double>& day) {
  std::size_t pages = 0;
  std::size_t resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  std::nth_element(day.begin(), day.begin() + kDay / 2, day.end());
  return {day[kDay / 2], static_cast<double>(mallinfo2().uordblks),
          static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE))};
}

void soak(const char* line, const Text& port) {
  using Time = std::chrono::steady_clock;
  const auto milliseconds = [](Time::time_point since) {
    return std::chrono::duration<double, std::milli>(Time::now() - since).count();
  };
  Till till(port);
  Sample early{};
  Sample late{};
  std::vector<double> day;
  const auto start = Time::now();
  for (int receipt = 1; receipt <= kReceipts; ++receipt) {
    const auto begin = Time::now();
    till.sellReceipt();
    day.push_back(milliseconds(begin));
    if (receipt % kDay != 0) continue;
    till.closeDay();
    late = sample(day);
    if (receipt == kEarly) early = late;
    day.clear();
  }
  constexpr double kMebi = 1 << 20;
  std::printf(
      "  %-8s %d receipts, %d Z reports in %.0f s; from receipt %d to %d: time a receipt %.2f (%.2f ms), heap in "
      "use %.3f (%.2f MiB), resident %.3f (%.1f MiB)\n",
      line, kReceipts, kReceipts / kDay, milliseconds(start) / 1000, kEarly, kReceipts,
      late.milliseconds / early.milliseconds, late.milliseconds, late.heap / early.heap, late.heap / kMebi,
      late.resident / early.resident, late.resident / kMebi);
}

}  // namespace
}  // namespace mirvane::bench

int main(int argc, char** argv) {
  using namespace mirvane;
  if (argc != 3) bench::fail("usage: soak-bench SERIAL-PORT NETWORK-PORT");
  {
    const embedding::Component component;
    bench::soak("serial", fromUtf8(argv[1]));
  }
  bench::HurriedClock clock;
  const platform::Platform& host = platform::hostPlatform();
  platform::Platform machine{host.serial, host.sockets, clock, host.screen, host.files};
  const embedding::Component component(machine);
  bench::soak("network", fromUtf8(argv[2]));
  return 0;
}
