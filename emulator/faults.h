#pragma once

#include <cstdint>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace mirvane::emulator {

/// How the register misbehaves on one command, or what happens to something that the till sends.
struct Fault {
  /// What it hits: the register's answer, or, on its way to the register, something that the till sends.
  enum class At { kAnswer, kTillFrame, kTillAck, kTillEnq };
  enum class Kind {
    kNone,
    // On the wire. These hit a repeated command too.
    kSilence,      // not executed, no answer
    kNak,          // not executed, answered with NAK
    kLost,         // executed, no answer
    kAckOnly,      // executed, on the network acknowledged, no reply
    kLate,         // reply after `number` milliseconds
    kDelayed,      // `number` milliseconds in transit; on a network later datagrams overtake it
    kSplit,        // the reply in two halves, `number` milliseconds apart
    kDuplicate,    // the reply, and again `number` milliseconds later, whatever happens in between
    kHalf,         // the first half of the reply
    kCut,          // the first `number` bytes of the reply, never its ETX
    kShort,        // a reply of two characters
    kEndless,      // the reply without its end, then `number` more bytes
    kNoise,        // `bytes` before the reply
    kNoiseWithin,  // `bytes` in the middle of the reply
    kStatus,       // printer status byte `bytes` (two digits) in the reply, nothing refused
    kUnplug,       // not executed, no answer: the line disappears, and comes back after `number` seconds
    kUnplugAfter,  // executed, no answer: the line disappears likewise
    // In the register. A repeated command gets its earlier answer.
    kCode,     // not executed, answered with code `number`
    kReply,    // not executed, answered with `bytes`
    kPrinter,  // executed with the printer status byte `number`
  };

  Kind kind = Kind::kNone;
  std::uint32_t number = 0;
  std::string bytes;
  /// The rule that caused it.
  std::string rule;
  At at = At::kAnswer;
  /// As written in the rule.
  std::string_view name = {};

  bool isUnplugging() const { return kind == Kind::kUnplug || kind == Kind::kUnplugAfter; }
  bool isOnWire() const { return kind >= Kind::kSilence && kind <= Kind::kUnplugAfter; }
};

/// The error in a rule, for the person who wrote it.
struct FaultError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The names of all faults, as in rules: "lost", "till-ack lost".
std::vector<std::string> faultNames();
/// "till-frame", "till-ack" or "till-enq".
std::string_view sentName(Fault::At at);

/// Faults on demand. README.md has the grammar of the rules.
class Faults {
 public:
  /// States that stay on until they are switched off.
  struct Switches {
    /// Bits of the printer status byte.
    std::uint8_t printer = 0;
    /// Every command is refused as busy.
    bool isBusy = false;
    /// The register ignores everything.
    bool isOff = false;
  };
  Switches switches;

  /// Adds a rule and returns its number. Throws FaultError.
  int add(std::string_view rule);
  /// False if there is no such rule.
  bool remove(int number);
  /// Adds the rules of a script, in UTF-8 or code page 1253, one per line; skips blank lines and lines that begin with
  /// "#". Throws FaultError with the line number; the lines before it are then active.
  void addScript(std::string_view script);
  /// Removes the rules whose time is over; false if there are none.
  bool forgetEnded(double now);
  /// Removes all rules and turns the switches off. Rules with a rate restart.
  void clear();
  /// Selects the commands that rules with a rate hit: the same number, the same commands.
  void seed(std::uint32_t number) { random_.seed(seed_ = number); }

  /// The fault for a command that has arrived, from the first rule that applies. `isRepeat`: the command was executed
  /// before and only its reply is wanted. `now` is in seconds from any fixed moment. With another `at`: the fault for
  /// something that the till has sent, which belongs to `command`.
  Fault take(std::string_view command, bool isRepeat, double now, Fault::At at = Fault::At::kAnswer);
  /// Whether there is a rule for it.
  bool strikes(Fault::At at) const;

  static constexpr std::uint32_t kAll = 100'000;
  struct Rule {
    /// Counts from 1.
    int number = 0;
    std::string text;
    std::string prefix;
    std::uint32_t skip = 0;
    /// How often the rule still applies; with `seconds`, it applies for that long after its first time.
    std::uint32_t times = 1;
    double seconds = 0;
    double end = 0;
    /// How many in kAll it hits.
    std::uint32_t rate = kAll;
    Fault fault;
  };

  /// The active rules.
  const std::vector<Rule>& rules() const { return rules_; }

 private:
  bool applies(Rule& rule, double now);

  int lastNumber_ = 0;
  std::vector<Rule> rules_;
  std::uint32_t seed_ = 1;
  // A standard generator, which gives the same numbers everywhere.
  std::mt19937 random_{seed_};
};

}  // namespace mirvane::emulator
