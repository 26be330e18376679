// What a call costs beyond the bytes' own time on the line: link-bench UNPACED-PORT PACED-PORT.
// The register on PACED-PORT takes the time of a line of 115200 bits per second, the other one none. Both answer "v/"
// with a reply of 200 bytes.

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include "bench/till.h"
#include "protocol/wire.h"
#include "text/code_page.h"

namespace mirvane::bench {

void fail(const std::string& what) {
  std::fprintf(stderr, "link-bench: %s\n", what.c_str());
  std::exit(1);
}

namespace {

using Time = std::chrono::steady_clock;

double microseconds(Time::duration duration) { return std::chrono::duration<double, std::micro>(duration).count(); }

struct Sample {
  double median, p95;
};

Sample measure(int times, const std::function<void()>& call) {
  std::vector<double> all;
  for (int i = -5; i < times; ++i) {
    const auto start = Time::now();
    call();
    if (i >= 0) all.push_back(microseconds(Time::now() - start));  // the first few warm up
  }
  std::sort(all.begin(), all.end());
  return {all[all.size() / 2], all[all.size() * 95 / 100]};
}

// CAN CAN ENQ, STX command checksum ETX, STX reply ETX, ACK; ten bits a byte.
double wireMicroseconds(TextView command, TextView reply) {
  const auto bytes = 3 + (command.size() + 4) + (reply.size() + 2) + 1;
  return static_cast<double>(bytes) * 10 * 1e6 / wire::kBaud;
}

struct Exchange {
  const char* name;
  TextView command;
  bool isSale;
};

void benchLine(Till& till, const Text& port, bool paced) {
  till.connect(port);
  for (const Exchange& exchange : {Exchange{"status query", u"?/", false}, Exchange{"item sale", kItem, true},
                                   Exchange{"200-byte reply", u"v/", false}}) {
    const Text reply = till.send(Text(exchange.command));
    const double wire = wireMicroseconds(exchange.command, reply);
    const Sample sample = measure(100, [&] {
      if (exchange.isSale) {
        till.sell();
      } else {
        till.send(Text(exchange.command));
      }
    });
    if (exchange.isSale) till.send(u"O/2/");
    if (paced) {
      std::printf(
          "  paced    %-15s %8.0f us  p95 %8.0f us  wire %6.0f us  ratio %.2f  beyond wire and the link's own 1 ms: "
          "%.2f\n",
          exchange.name, sample.median, sample.p95, wire, sample.median / wire, (sample.median - 1000) / wire);
    } else {
      std::printf("  unpaced  %-15s %8.0f us  p95 %8.0f us\n", exchange.name, sample.median, sample.p95);
    }
  }
  till.disconnect();
}

// By turns, so that whatever else slows the machine slows both.
void benchTrace(Till& till) {
  constexpr int kTurns = 20;
  std::vector<double> off;
  std::vector<double> on;
  for (int i = 0; i < kTurns; ++i) {
    off.push_back(measure(20, [&] { till.send(u"?/"); }).median);
    till.setTrace(true);
    on.push_back(measure(20, [&] { till.send(u"?/"); }).median);
    till.setTrace(false);
  }
  std::sort(off.begin(), off.end());
  std::sort(on.begin(), on.end());
  std::printf("  the trace on: a status query takes %.3f times as long\n", on[kTurns / 2] / off[kTurns / 2]);
}

// Once begun, a record goes on: so this comes last, and the runs without one first.
void benchRecord(Till& till, const std::array<Text, 2>& ports) {
  constexpr int kTimes = 400;
  std::array<double, 2> without{};
  for (const bool recorded : {false, true}) {
    if (recorded) makeRecordFolder();
    for (std::size_t i = 0; i < ports.size(); ++i) {
      till.connect(ports[i]);
      const double median = measure(kTimes, [&] { till.send(u"?/"); }).median;
      till.disconnect();
      if (recorded) {
        std::printf("  with a flight record: a status query takes %.3f times as long (%s)\n", median / without[i],
                    i == 0 ? "unpaced" : "paced");
      } else {
        without[i] = median;
      }
    }
  }
}

}  // namespace
}  // namespace mirvane::bench

int main(int argc, char** argv) {
  using namespace mirvane::bench;
  if (argc != 3) fail("usage: link-bench UNPACED-PORT PACED-PORT");
  Till till;
  benchLine(till, mirvane::fromUtf8(argv[1]), false);
  benchLine(till, mirvane::fromUtf8(argv[2]), true);

  constexpr int kCalls = 100000;
  const auto start = Time::now();
  for (int i = 0; i < kCalls; ++i) till.callNothing();
  std::printf("  late-bound call that sends nothing: %.2f us\n", microseconds(Time::now() - start) / kCalls);

  till.connect(mirvane::fromUtf8(argv[1]));
  till.send(u"?/");
  std::printf("  memory of this process with one connected object: %.1f MiB\n",
              static_cast<double>(memory()) / (1 << 20));
  if (const auto size = componentSize(); size > 0) {
    std::printf("  the DLL: %.0f KiB\n", static_cast<double>(size) / 1024);
  }
  benchTrace(till);
  till.disconnect();
  benchRecord(till, {mirvane::fromUtf8(argv[1]), mirvane::fromUtf8(argv[2])});
  return 0;
}
