#pragma once

#include <cstdint>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace mirvane::emulator {

/// How the device misbehaves on one command, or what happens to something that the till sends.
struct Fault {
  /// What it strikes: the register's answer, or, on its way to the register, what the till sends.
  enum class At { kAnswer, kTillFrame, kTillAck, kTillEnq };
  enum class Kind {
    kNone,
    // On the wire. They strike a repeated command too.
    kSilence,      // not executed, no answer
    kNak,          // not executed, answered with NAK
    kLost,         // executed, no answer
    kAckOnly,      // executed, on the network acknowledged, no reply
    kLate,         // reply after `number` milliseconds
    kDelayed,      // `number` milliseconds on its way; on a network what is sent later overtakes it
    kSplit,        // the reply in two halves, `number` milliseconds apart
    kDuplicate,    // the reply, and once more `number` milliseconds later, whatever comes between
    kHalf,         // the first half of the reply
    kCut,          // the first `number` bytes of the reply, never its ETX
    kShort,        // a reply of two characters
    kEndless,      // the reply without its end, then `number` bytes more
    kNoise,        // `bytes` before the reply
    kNoiseWithin,  // `bytes` in the middle of the reply
    kStatus,       // printer status byte `bytes` (two digits) in the reply, nothing refused
    kUnplug,       // not executed, no answer: the line vanishes, and comes back after `number` seconds
    kUnplugAfter,  // executed, no answer: the line vanishes likewise
    // In the device. A repeated command is answered as it was before.
    kCode,     // not executed, answered with code `number`
    kReply,    // not executed, answered with `bytes`
    kPrinter,  // executed with the printer status byte `number`
  };

  Kind kind = Kind::kNone;
  std::uint32_t number = 0;
  std::string bytes;
  /// The rule that it comes from.
  std::string rule;
  At at = At::kAnswer;
  /// As it stands in the rule.
  std::string_view name = {};

  bool isUnplugging() const { return kind == Kind::kUnplug || kind == Kind::kUnplugAfter; }
  bool isOnWire() const { return kind >= Kind::kSilence && kind <= Kind::kUnplugAfter; }
};

/// What is wrong with a rule, for whoever wrote it.
struct FaultError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The names of all faults, as they stand in rules: "lost", "till-ack lost".
std::vector<std::string> faultNames();
/// "till-frame", "till-ack" or "till-enq".
std::string_view sentName(Fault::At at);

/// Misbehaviour on demand. README.md has the grammar of the rules.
class Faults {
 public:
  /// States that hold until they are put back.
  struct Switches {
    /// Bits of the printer status byte.
    std::uint8_t printer = 0;
    /// Every command is refused as busy.
    bool isBusy = false;
    /// The register takes nothing and answers nothing.
    bool isOff = false;
  };
  Switches switches;

  /// Adds a rule and returns its number. Throws FaultError.
  int add(std::string_view rule);
  /// False when no such rule stands.
  bool remove(int number);
  /// Adds the rules of a script, in UTF-8 or code page 1253, one a line; blank lines and lines beginning with "#" are
  /// passed over. Throws FaultError with the number of the line; the lines before it are in force then.
  void addScript(std::string_view script);
  /// Takes away the rules whose time is over. False when there is none.
  bool forgetEnded(double now);
  /// Takes all rules away and puts the switches back. Rules with a rate begin anew.
  void clear();
  /// Which of the commands a rule with a rate strikes: the same number, the same ones.
  void seed(std::uint32_t number) { random_.seed(seed_ = number); }

  /// The fault for a command that has arrived, from the first rule that applies. `isRepeat`: the command was executed
  /// before and only its reply is wanted. `now` is in seconds, from any fixed moment. With another `at`, the fault for
  /// something that the till has sent, which belongs to `command`.
  Fault take(std::string_view command, bool isRepeat, double now, Fault::At at = Fault::At::kAnswer);
  /// Whether a rule stands for it.
  bool strikes(Fault::At at) const;

  static constexpr std::uint32_t kAll = 100'000;
  struct Rule {
    /// Counts from 1.
    int number = 0;
    std::string text;
    std::string prefix;
    std::uint32_t skip = 0;
    /// How often the rule still applies; with `seconds`, it applies that long from its first time on.
    std::uint32_t times = 1;
    double seconds = 0;
    double end = 0;
    /// How many in kAll it strikes.
    std::uint32_t rate = kAll;
    Fault fault;
  };

  /// Those that still stand.
  const std::vector<Rule>& rules() const { return rules_; }

 private:
  bool applies(Rule& rule, double now);

  int lastNumber_ = 0;
  std::vector<Rule> rules_;
  std::uint32_t seed_ = 1;
  // Of the standard's generators, whose numbers are the same everywhere.
  std::mt19937 random_{seed_};
};

}  // namespace mirvane::emulator
