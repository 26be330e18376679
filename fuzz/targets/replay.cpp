// A flight record played again: whole, cut or damaged, to a till that does the same again or anything else. An input: a
// byte of how (1 the till does the same, 2 the line breaks in the midst of what it sends), a byte of how large the
// pieces are in which it sends, unless it does the same a line of what it sends, and the record.

#include "emulator/replay.h"

#include <utility>

#include "fuzz/machine.h"

namespace mirvane::fuzz {
namespace {

using emulator::Replay;
using recorder::EventKind;

constexpr std::uint32_t kDay = 86'400'000;  // milliseconds

/// What the register of a record does.
class Outlet : public emulator::Outlet {
 public:
  explicit Outlet(bool breaks) : breaks_(breaks) {}

  void send(std::string_view bytes, std::uint32_t delay) override {
    require(delay <= kDay, "an answer comes within a day");
    sent += bytes.size();
  }
  void sendCopy(std::string_view, std::uint32_t) override { require(false, "no copies"); }
  void drop() override { require(false, "nothing is dropped"); }
  bool hurry() override { return std::exchange(isBreaking_, false); }
  void unplug(std::uint32_t delay, std::uint32_t length) override {
    require(delay <= kDay && length <= kDay, "a line comes back within a day");
    isBreaking_ = breaks_;
  }

  std::size_t sent = 0;

 private:
  const bool breaks_;
  bool isBreaking_ = false;
};

/// What a record tells, up to where it is damaged.
struct Told {
  explicit Told(const std::string& record) {
    Input lines(reinterpret_cast<const std::uint8_t*>(record.data()), record.size());
    for (std::size_t at = record.find('\n'); at != std::string::npos; at = record.find('\n', at + 1)) {
      std::string line = lines.line();
      if (line.ends_with('\r')) line.pop_back();
      const auto event = recorder::parsedEvent(line);
      if (!event || event->kind == EventKind::kLost) return;
      if (event->kind == EventKind::kSent) sent.push_back(event->text);
      if (recorder::isOfLine(event->kind) && event->kind != EventKind::kSent) received += event->text.size();
    }
  }
  /// A record shows no key. One that shows what may be a word that holds one, `]/` or `,/`, was never written.
  bool showsKey() const {
    std::string all;
    for (const std::string& text : sent) all += text;
    return all.find(']') != std::string::npos || all.find(",/") != std::string::npos;
  }

  std::vector<std::string> sent;
  std::size_t received = 0;
};

void feed(Replay& replay, const std::string& bytes, std::size_t size, Outlet& outlet) {
  for (std::size_t at = 0; at < bytes.size(); at += size) replay.feed(bytes.substr(at, size), outlet);
}

void play(Replay& replay, const std::vector<std::string>& sent, std::size_t size, Outlet& outlet) {
  for (const std::string& bytes : sent) feed(replay, bytes, size, outlet);
  replay.stop();
  require(replay.end() && !replay.report().empty(), "it ends, and tells how");
  require(replay.lastDelay() <= kDay, "the last answer comes within a day");
}

void run(Input input) {
  const unsigned how = input.byte();
  const std::size_t size = 1 + input.byte();
  const bool isSame = (how & 1U) != 0;
  const std::string other = isSame ? std::string() : input.line();
  const std::string record = input.rest();
  const Told told(record);
  try {
    Replay replay(record);
    Outlet outlet(!isSame && (how & 2U) != 0);
    play(replay, isSame ? told.sent : std::vector{other}, size, outlet);
    require(outlet.sent <= told.received, "the till is told nothing that it was not told then");
    const bool isDifferent = replay.end() == Replay::End::kDifferent;
    require(!isSame || told.showsKey() || !isDifferent, "the same till does the same");
    feed(replay, other, size, outlet);
  } catch (const emulator::ReplayError& error) {
    require(error.what()[0] != '\0', "it says why it is none");
  }
}

}  // namespace
}  // namespace mirvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  mirvane::fuzz::run({data, size});
  return 0;
}
