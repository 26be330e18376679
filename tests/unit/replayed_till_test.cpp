#include "emulator/loopback.h"
#include "recorder/recorder.h"
#include "tests/fakes/component_test.h"

namespace mirvane::test {
namespace {

using emulator::Line;

struct Kind {
  const char* name;
  const char16_t* port;
  Line::Acknowledges acknowledges;
};
void PrintTo(const Kind& kind, std::ostream* out) { *out << kind.name; }

/// Time goes on while somebody looks, too.
struct TickingClock : FakeClock {
  double elapsed() override { return now += 0.0001; }
};

class ReplayedTill : public ComponentTest, public testing::WithParamInterface<Kind> {
 protected:
  ReplayedTill() { files.recordFolder = u"C:\\records"; }

  TickingClock ticking;

  /// What a till's day at this line comes to, call by call, and its record.
  std::pair<std::string, std::string> day(platform::SerialPort& line, platform::DatagramSockets& network) {
    platform::Platform machineAtRegister{line, network, ticking, screen, files};
    moduleState().platform = &machineAtRegister;
    files.contents.clear();
    moduleState().recorder = std::make_unique<recorder::Recorder>(files, ticking, files.recordFolder);
    std::string outcomes;
    const auto till = createObject("fiscalTrevikModule");
    const auto tell = [&](std::string_view member, auto... arguments) {
      run(*till, member, arguments...);
      outcomes += outcome() + "\n";
    };
    tell("Connect_", Text(GetParam().port));
    tell("ItemSale", Text(u"Καφές"), 2.0, 1.80, 13.0, Short{2});
    tell("ItemSale", Text(u"Τυρόπιτα"), 1.0, 2.20, 13.0, Short{2});
    tell("commentPrinterPrint", Text(u"ζεστή"), Short{1});
    tell("Payment", Short{1}, Text(), 10.0, Short{0}, Short{0});
    tell("Payment", Short{1}, Text(), 0.0, Short{0}, Short{0});
    tell("DisConnect_", Text(GetParam().port));
    moduleState().recorder = nullptr;
    return {outcomes, files.below("C:\\records\\").begin()->second};
  }
};

INSTANTIATE_TEST_SUITE_P(Line, ReplayedTill,
                         testing::Values(Kind{"serial", u"COM1", Line::Acknowledges::kNothing},
                                         Kind{"network", u"10.0.0.5:9100", Line::Acknowledges::kFrame},
                                         Kind{"network_enq", u"10.0.0.5:9100", Line::Acknowledges::kEnq}),
                         [](const auto& tested) { return tested.param.name; });

TEST_P(ReplayedTill, IsToldWhatItWasTold) {
  emulator::Device atLine;
  emulator::Faults faults;
  const bool isSerial = GetParam().acknowledges == Line::Acknowledges::kNothing;
  for (const char* rule : {isSerial ? "on 3/S unplug-after 2" : "on 3/S lost", "next late 900", "on P/ noise",
                           "after 1 on 3/ duplicate 60"}) {
    EXPECT_TRUE(faults.add(rule)) << rule;
  }
  emulator::LoopbackPort line(atLine, faults, ticking);
  emulator::LoopbackSockets network(atLine, faults, ticking, GetParam().acknowledges);
  const auto [told, record] = day(line, network);
  EXPECT_THAT(told, testing::HasSubstr("0 00/00/02/")) << told;

  emulator::Replay replay(record);
  emulator::LoopbackPort replayedLine(replay, ticking);
  emulator::LoopbackSockets replayedNetwork(replay, ticking);
  EXPECT_EQ(day(replayedLine, replayedNetwork).first, told);
  replay.stop();
  EXPECT_EQ(replay.end(), emulator::Replay::End::kAsRecorded) << replay.report();
}

}  // namespace
}  // namespace mirvane::test
