// Requests of any kind to the service, at a register that does what it is told. An input is lines "METHOD PATH BODY";
// behind an empty one all work that waits is done.

#include "campaign/machine.h"
#include "fuzz/machine.h"
#include "service/interface.h"
#include "service/sqlite_store.h"
#include "service/worker.h"

namespace mirvane::fuzz {
namespace {

class Shop {
 public:
  void ask(const std::string& line) {
    const std::size_t path = std::min(line.find(' '), line.size());
    const std::size_t body = std::min(line.find(' ', path + 1), line.size());
    http::Request request{line.substr(0, path),
                          line.substr(std::min(path + 1, body), body - path - (path < body)),
                          {},
                          {},
                          line.substr(std::min(body + 1, line.size()))};
    const http::Answer answer = interface_.answer(request);
    require(answer.status >= 200 && answer.status < 504 && answer.status != 500, "every request has an answer");
    if (answer.type.ends_with("json")) http::parseJson(answer.body);
  }
  /// Whatever was let in is done, and no receipt stays open but one that wants a payment.
  void work() {
    constexpr int kMostSteps = 50;
    int steps = 0;
    while (worker_.step()) require(++steps < kMostSteps, "all work comes to its end");
    const auto job = store_.claim();
    require(!job || job->state == service::State::kNeedsPayment, "nothing is left undone");
    require(!machine_.device.fiscal().receipt || job, "no receipt is left open");
  }

 private:
  campaign::Machine machine_{campaign::LineKind::kSerial};
  service::SqliteStore store_{":memory:"};
  service::Board board_;
  service::Worker worker_{machine_.platform, store_, board_, u"COM1"};
  service::Interface interface_{store_, board_, {nullptr, 20, [] {}, [] { return std::int64_t{0}; }}};
};

}  // namespace
}  // namespace mirvane::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  mirvane::fuzz::Input input(data, size);
  mirvane::fuzz::Shop shop;
  while (!input.atEnd()) {
    const std::string line = input.line();
    line.empty() ? shop.work() : shop.ask(line);
  }
  shop.work();
  return 0;
}
