#include "state/module_state.h"

namespace mirvane {

ModuleState& moduleState() {
  // Never destroyed: when the process ends, the objects in it would be released in an order of chance.
  static ModuleState& state = *new ModuleState;
  return state;
}

ObjectPtr driverOn(TextView port) {
  if (moduleState().currentDriver == nullptr) moduleState().currentDriver = probeDriver(port);
  return moduleState().currentDriver;
}

ObjectPtr driverOrRefusal() { return driverOn({}); }

void releaseDriver() { moduleState().currentDriver = nullptr; }

ObjectPtr probeDriver(TextView port) {
  if (!port.empty()) {
    for (const DriverCandidate& candidate : moduleState().candidates) {
      if (candidate.create == nullptr) continue;
      ObjectPtr driver = candidate.create();
      Text portName(port);
      std::int16_t result = 0;
      Text text;
      bool suppress = true;
      driver->call("Connect_", portName, result, text, suppress);
      if (result >= 0) {
        moduleState().fiscalType = candidate.type;
        return driver;
      }
    }
  }
  moduleState().fiscalType = FISCAL_unknown;
  return moduleState().createNullDriver();
}

void setTrace(bool active) {
  ModuleState& state = moduleState();
  state.traceActive = active;
  state.platform->screen.showTrace(active);
}

void trace(TextView label, TextView text) {
  const ModuleState& state = moduleState();
  if (!state.traceActive) return;
  const platform::LocalTime now = state.platform->clock.localTime();
  Text line;
  for (const int part : {now.minute, now.second}) {
    if (!line.empty()) line += u':';
    line += static_cast<char16_t>(u'0' + part / 10);
    line += static_cast<char16_t>(u'0' + part % 10);
  }
  line += label;
  line += text;
  state.platform->screen.traceLine(line);
}

}  // namespace mirvane
