#pragma once

#include "automation/signature.h"
#include "protocol/reply.h"

namespace mirvane {

/// The caller's variables through which every operation reports; a member has them as three parameters.
struct Outcome {
  /// 0: success. Above 0: the register's code; 100: no driver is selected. Below 0: the port or the link failed, see
  /// link_result.
  std::int16_t& Result;
  /// The text for the operator; on success whatever the operation returns.
  Text& Exresult;
  /// True suppresses message boxes, except the network endpoint's own.
  bool& SupressError_;

  using Types = std::tuple<std::int16_t&, Text&, bool&>;
  static constexpr std::array<Parameter, 3> kNames = {output("Result"), output("Exresult"), "SupressError_"};

  /// Stores the outcome of a command.
  void set(const Reply& reply) const {
    Result = reply.result;
    Exresult = reply.message;
  }
};

/// Variables of the component's own, for a command whose outcome the caller does not see. Suppresses message boxes.
class OwnOutcome {
 public:
  operator Outcome() { return {result_, text_, silent_}; }

 private:
  std::int16_t result_ = 0;
  Text text_;
  bool silent_ = true;
};

}  // namespace mirvane
