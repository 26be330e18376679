#pragma once

#include <cstdint>
#include <stdexcept>

namespace mirvane {

/// Failures of the automation layer, with the system's numbers.
enum class AutomationCode : std::uint32_t {
  memberNotFound = 0x80020003,
  parameterNotFound = 0x80020004,
  typeMismatch = 0x80020005,
  overflow = 0x8002000A,
  badIndex = 0x8002000B,
  badParameterCount = 0x8002000E,
  objectNotSet = 0x800A005B,  // a member of Nothing
};

/// Raised to the caller of a member instead of a result: the call itself was impossible. What the register refuses is
/// reported in the caller's variables instead.
class AutomationError : public std::runtime_error {
 public:
  explicit AutomationError(AutomationCode code, int argument = -1);

  AutomationCode code() const { return code_; }

  /// Position of the argument at fault, from 0; -1 if none is.
  int argument() const { return argument_; }

 private:
  AutomationCode code_;
  int argument_;
};

}  // namespace mirvane
