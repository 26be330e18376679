// Fault scripts of any kind, and what a line makes of them. An input: a byte of how (1 the network that acknowledges
// the frame, 2 the one that acknowledges the ENQ), then the script.

#include "emulator/line.h"
#include "fuzz/machine.h"
#include "protocol/wire.h"

namespace mirvane::fuzz {
namespace {

using emulator::Faults;

class Outlet : public emulator::Outlet {
 public:
  void send(std::string_view bytes, std::uint32_t) override {
    count += bytes.size();
    last = bytes.substr(0, 64);
  }
  void sendCopy(std::string_view bytes, std::uint32_t delay) override { send(bytes, delay); }
  void drop() override {}
  bool hurry() override { return false; }
  void unplug(std::uint32_t, std::uint32_t) override {}

  std::size_t count = 0;
  std::string last;
};

void addAll(Faults& faults, const std::string& script) {
  try {
    faults.addScript(script);
  } catch (const emulator::FaultError&) {
  }
}

void requireSame(const Faults::Rule& a, const Faults::Rule& b) {
  const auto parts = [](const Faults::Rule& rule) {
    const emulator::Fault& fault = rule.fault;
    return std::tuple(rule.text, rule.prefix, rule.skip, rule.times, rule.seconds, rule.rate, fault.at, fault.kind,
                      fault.number, fault.bytes, fault.rule);
  };
  require(parts(a) == parts(b), "a rule's text is the rule");
}

void run(Input input) {
  const unsigned how = input.byte();
  Faults faults;
  addAll(faults, input.rest());
  for (const Faults::Rule& rule : faults.rules()) {
    Faults alone;
    alone.add(rule.text);
    requireSame(rule, alone.rules().front());
    // Nobody waits for 100 million bytes.
    if (rule.fault.kind == emulator::Fault::Kind::kEndless && rule.fault.number > 1U << 21U) return;
  }
  double now = 0;
  emulator::Device device({}, emulator::systemTime, [&now] { return now; });
  Outlet outlet;
  using Acknowledges = emulator::Line::Acknowledges;
  constexpr Acknowledges kAll[] = {Acknowledges::kNothing, Acknowledges::kFrame, Acknowledges::kEnq,
                                   Acknowledges::kNothing};
  emulator::Line line(device, faults, outlet, kAll[how & 3U], [&now] { return now; });
  const auto finite = [&faults] {
    std::uint64_t times = 0;
    for (const Faults::Rule& rule : faults.rules()) times += rule.times;
    return times;
  };
  for (int i = 0; i < 8; ++i, now += 1.5) {
    const auto before = finite();
    const std::size_t rules = faults.rules().size();
    for (const std::string_view frame : {"\x05\x02?/10\x03", "\x05\x02v/65\x03", "\x05\x02F/3/15\x03\x06"}) {
      outlet.last.clear();
      line.feed(frame, {});
    }
    require(finite() <= before && faults.rules().size() <= rules, "rules wear off");
  }
  faults.clear();
  line.dropHeld();
  line.feed("\x18\x05\x06\x02?/10\x03", {});
  require(outlet.last.starts_with("\x02"
                                  "00/00/"),
          "without rules the register answers");
}

}  // namespace
}  // namespace mirvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  mirvane::fuzz::run({data, size});
  return 0;
}
