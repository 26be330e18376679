#pragma once

#include <functional>
#include <vector>

#include "tests/fakes/fake_line.h"

// Every fault of the emulator, and what a till without a driver sees of it: over the lines in process and over real
// ones.
namespace mirvane::test {

enum class LineKind { kSerial, kNetworkFrame, kNetworkEnq };

const std::string kSale = "3/S//A///1.000/2.00/1/24.00/1/";
const std::string kAck{wire::kAck};
const std::string kNak{wire::kNak};
const std::string kEnq{wire::kEnq};

inline std::string frame(const std::string& command) { return framed(command + checksum(command)); }

/// A till's end of a line.
class Wire {
 public:
  virtual ~Wire() = default;

  /// On a network, one datagram.
  virtual void send(const std::string& bytes) = 0;
  /// The next `size` bytes of a serial line, or the next datagram; less when nothing comes for seconds.
  virtual std::string receive(std::size_t size) = 0;
  /// The line has vanished, and comes back.
  virtual void reconnect() = 0;
  /// Seconds from any fixed moment.
  virtual double now() = 0;
};

struct FaultCase {
  using Lines = std::vector<LineKind>;

  std::string fault;
  /// What comes back for a sale; "+" is the ACK of the frame, on the network whose register sends one.
  std::vector<std::string> answers;
  /// How many are booked of this sale and of an equal one behind it, which is answered.
  int booked;
  Lines lines = {LineKind::kSerial, LineKind::kNetworkFrame, LineKind::kNetworkEnq};
  /// What comes back for the ENQ, on the network whose register acknowledges it.
  std::vector<std::string> enquired = {kAck};

  bool isUnplugging() const { return fault.starts_with("unplug"); }
  std::string rule() const { return (fault.starts_with("till-enq") ? "next " : "on 3/S ") + fault; }
};

inline std::vector<FaultCase> faultCases() {
  using Kind = LineKind;
  const std::string done = framed("00/00/06/"), half = done.substr(0, 5), rest = done.substr(5);
  const std::string open = done.substr(0, done.size() - 1);
  return {
      {"silence", {}, 1},
      {"nak", {kNak}, 1},
      {"lost", {}, 2},
      {"ack-only", {"+"}, 2},
      {"late 40", {"+", done}, 2},
      {"delayed 40", {"+", done}, 2},
      {"split 40", {"+", half, rest}, 2},
      {"duplicate 40", {"+", done, done}, 2},
      {"half", {"+", half}, 2},
      {"cut 7", {"+", done.substr(0, 7)}, 2},
      {"cut 99", {"+", open}, 2},
      {"short", {"+", framed("00")}, 2},
      {"endless 2000", {"+", open, std::string(1024, 'x'), std::string(976, 'x')}, 2},
      {"noise 41FF", {"+", "A\xFF" + done}, 2},
      {"noise-within 41", {"+", half + "A" + rest}, 2},
      {"status 04", {"+", framed("00/04/06/")}, 2},
      {"unplug 0", {}, 1},
      {"unplug-after 0", {}, 2},
      {"busy", {"+", framed("0E/00/00/")}, 1},
      {"code 116", {"+", framed("74/00/00/")}, 1},
      {"reply Ω 00/", {"+", framed("\xD9 00/")}, 1},
      {"paper-end", {"+", framed("19/04/00/")}, 1},
      {"device-error", {"+", framed("2C/02/00/")}, 1},
      {"offline", {"+", framed("1A/10/00/")}, 1},
      {"printer-silent", {"+", framed("29/40/00/")}, 1},
      {"flash-near-full", {"+", framed("00/20/06/")}, 2},
      {"till-frame lost", {}, 1},
      {"till-frame delayed 40", {"+", done}, 2},
      {"till-frame duplicate 0", {"+", done, "+", done}, 2},
      {"till-frame half", {}, 1},
      {"till-frame cut 99", {}, 1},
      {"till-frame noise 41FF", {"+", done}, 2},
      {"till-frame noise-within 41", {kNak}, 1},
      // A lost ACK leaves the equal sale a repetition of this one.
      {"till-ack lost", {"+", done}, 1},
      {"till-ack delayed 40", {"+", done}, 2, {Kind::kSerial}},
      {"till-ack delayed 60000", {"+", done}, 1, {Kind::kNetworkFrame, Kind::kNetworkEnq}},
      {"till-ack duplicate 0", {"+", done}, 2},
      {"till-ack half", {"+", done}, 1},
      {"till-ack cut 1", {"+", done}, 1},
      {"till-ack noise 41FF", {"+", done}, 2},
      {"till-ack noise 02", {"+", done}, 1},
      {"till-ack noise-within 02", {"+", done}, 1},
      {"till-enq lost", {"+", done}, 2, {Kind::kSerial, Kind::kNetworkEnq}, {}},
      {"till-enq delayed 40", {"+", done}, 2, {Kind::kSerial, Kind::kNetworkEnq}},
      {"till-enq duplicate 40", {"+", done}, 2, {Kind::kSerial, Kind::kNetworkEnq}, {kAck, kAck}},
      {"till-enq half", {"+", done}, 2, {Kind::kSerial, Kind::kNetworkEnq}, {}},
      {"till-enq cut 1", {"+", done}, 2, {Kind::kSerial, Kind::kNetworkEnq}, {}},
      {"till-enq noise 41FF", {"+", done}, 2, {Kind::kSerial, Kind::kNetworkEnq}},
      {"till-enq noise-within 41", {"+", done}, 2, {Kind::kSerial, Kind::kNetworkEnq}},
  };
}

/// Two equal sales with a register on whose line the fault's rule stands, each acknowledged, and the question what is
/// booked.
class FaultDialogue {
 public:
  FaultDialogue(Wire& wire, LineKind line) : wire_(wire), line_(line) {}

  void run(const FaultCase& row) {
    const double start = wire_.now();
    ask(kSale, row.answers, row.enquired);
    if (row.isUnplugging()) wire_.reconnect();
    wire_.send(kAck);
    ask(kSale, {"+", framed("00/00/06/")});
    wire_.send(kAck);
    const std::string sum = std::to_string(2 * row.booked) + ".00/";
    ask("9/", {"+", framed("00/00/06/" + sum + "0.00/0.00/0.00/0.00/1/" + sum)});
    EXPECT_GE(wire_.now() - start, row.fault.ends_with(" 40") ? 0.04 : 0);
  }

 private:
  void ask(const std::string& command, const std::vector<std::string>& answers,
           const std::vector<std::string>& enquired = {kAck}) {
    wire_.send(line_ == LineKind::kSerial ? std::string{wire::kCan, wire::kCan, wire::kEnq} : kEnq);
    if (line_ == LineKind::kNetworkEnq) expect(enquired);
    wire_.send(frame(command));
    expect(answers);
  }
  void expect(const std::vector<std::string>& answers) {
    for (const std::string& answer : answers) {
      if (answer == "+" && line_ != LineKind::kNetworkFrame) continue;
      const std::string wanted = answer == "+" ? kAck : answer;
      EXPECT_EQ(wire_.receive(wanted.size()), wanted);
    }
  }

  Wire& wire_;
  const LineKind line_;
};

}  // namespace mirvane::test
