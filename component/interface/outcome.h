#pragma once

#include "automation/signature.h"
#include "protocol/reply.h"

namespace mirvane {

/// The variables of the caller's that every operation reports through; a member has them as three parameters.
struct Outcome {
  /// 0 success; greater than 0 a code of the device (100: no driver is selected); less than 0 the port or the link
  /// failed: see link_result.
  std::int16_t& Result;
  /// The text for the operator; on success what the operation put there.
  Text& Exresult;
  /// True: no message box is shown. Only the network endpoint's own boxes know no suppression.
  bool& SupressError_;

  using Types = std::tuple<std::int16_t&, Text&, bool&>;
  static constexpr std::array<Parameter, 3> kNames = {output("Result"), output("Exresult"), "SupressError_"};

  /// Tells what came of a command.
  void set(const Reply& reply) const {
    Result = reply.result;
    Exresult = reply.message;
  }
};

/// Variables of the component's own, for a command whose outcome the caller does not see. Silent.
class OwnOutcome {
 public:
  operator Outcome() { return {result_, text_, silent_}; }

 private:
  std::int16_t result_ = 0;
  Text text_;
  bool silent_ = true;
};

}  // namespace mirvane
