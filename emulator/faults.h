#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace mirvane::emulator {

/// How the device misbehaves on one command.
struct Fault {
  enum class Kind {
    kNone,
    // On the wire. They strike a repeated command too.
    kSilence,      // not executed, no answer
    kNak,          // not executed, answered with NAK
    kLost,         // executed, no answer
    kAckOnly,      // executed, on the network acknowledged, no reply
    kLate,         // reply after `number` milliseconds
    kSplit,        // the reply in two halves, `number` milliseconds apart
    kDuplicate,    // the reply, and once more `number` milliseconds later, whatever comes between
    kHalf,         // the first half of the reply
    kCut,          // the first `number` bytes of the reply, never its ETX
    kShort,        // a reply of two characters
    kEndless,      // the reply without its end, then `number` bytes more
    kNoise,        // `bytes` before the reply
    kNoiseWithin,  // `bytes` in the middle of the reply
    kStatus,       // printer status byte `bytes` (two digits) in the reply, nothing refused
    // In the device. A repeated command is answered as it was before.
    kCode,     // not executed, answered with code `number`
    kReply,    // not executed, answered with `bytes`
    kPrinter,  // executed with the printer status byte `number`
  };

  Kind kind = Kind::kNone;
  std::uint32_t number = 0;
  std::string bytes;

  bool isOnWire() const { return kind >= Kind::kSilence && kind <= Kind::kStatus; }
};

/// What is wrong with a rule, for whoever wrote it.
struct FaultError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Misbehaviour on demand. README.md has the grammar of the rules.
class Faults {
 public:
  /// Adds a rule. Throws FaultError.
  void add(std::string_view rule);
  /// Adds the rules of a script, one a line; blank lines and lines beginning with "#" are passed over. Throws
  /// FaultError with the number of the line; the lines before it are in force then.
  void addScript(std::string_view script);
  void clear() { rules_.clear(); }

  /// The fault for a command that has arrived, from the first rule that applies. `isRepeat`: the command was executed
  /// before and only its reply is wanted. `now` is in seconds, from any fixed moment.
  Fault take(std::string_view command, bool isRepeat, double now);

 private:
  struct Rule {
    std::string prefix;
    std::uint32_t skip = 0;
    /// How often the rule still applies; with `seconds`, it applies that long from its first time on.
    std::uint32_t times = 1;
    double seconds = 0;
    double end = 0;
    Fault fault;
  };

  static bool applies(Rule& rule, double now);

  std::vector<Rule> rules_;
};

}  // namespace mirvane::emulator
