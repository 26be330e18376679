#pragma once

#include "campaign/machine.h"
#include "embedding/component.h"
#include "embedding/till.h"

namespace mirvane::campaign {

/// A till program that has just started, on a machine. A call that ends with an automation error was not told that it
/// is done.
class Till : private embedding::Component, public embedding::Till {
 public:
  explicit Till(Machine& machine, bool suppress = true) : Component(machine.platform) { SupressError_ = suppress; }

  /// True when it was told that it is done.
  template <class... A>
  bool call(std::string_view member, A&&... arguments) {
    return tell(facade(), member, std::forward<A>(arguments)...);
  }
  bool discount(double& amount) {
    bool onLastItem = false;
    Value adjustment;
    try {
      adjustment = read("adjustment", onLastItem);
    } catch (const AutomationError&) {  // no register is connected
      return false;
    }
    return tell(*std::get<ObjectPtr>(adjustment), "amountDiscount", u"ΕΚΠΤΩΣΗ", amount);
  }
  bool send(TextView command) { return call("SendCommand_", command); }

 private:
  template <class... A>
  bool tell(Object& object, std::string_view member, A&&... arguments) {
    try {
      return callOn(object, member, std::forward<A>(arguments)...);
    } catch (const AutomationError&) {
      Result = kUntouched;
      return false;
    }
  }
};

}  // namespace mirvane::campaign
