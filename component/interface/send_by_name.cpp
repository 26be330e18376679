#include "interface/send_by_name.h"

#include "state/module_state.h"

namespace mirvane {

Reply sendByCurrentDriver(Text command, Outcome outcome) {
  Text noPass;
  // Keeps the driver, because the program may release it during a wait.
  const ObjectPtr driver = driverOrRefusal();
  driver->call("SendCommand_", command, outcome.Result, outcome.Exresult, outcome.SupressError_, noPass);
  const bool succeeded = outcome.Result == 0;
  return {outcome.Result, outcome.Exresult, succeeded ? convertTo<Text>(driver->call("lastReply")) : Text()};
}

Reply askCurrentDriver(Text command) {
  OwnOutcome own;
  return sendByCurrentDriver(std::move(command), own);
}

}  // namespace mirvane
