#include "interface/module_state.h"

#include "interface/c_port_prop.h"
#include "interface/fiscal_null_module.h"

namespace mirvane {

ModuleState& moduleState() {
  // Never destroyed: when the process ends, the objects in it would be released in an order of chance.
  static ModuleState& state = *new ModuleState;
  return state;
}

ObjectPtr getCurrentDriver(TextView port) {
  if (moduleState().currentDriver == nullptr) moduleState().currentDriver = probeDriver(port);
  return moduleState().currentDriver;
}

ObjectPtr currentDriver() { return getCurrentDriver({}); }

void sendByCurrentDriver(Text command, std::int16_t& Result, Text& Exresult, bool& SupressError_) {
  Text noPass;
  currentDriver()->call("SendCommand_", command, Result, Exresult, SupressError_, noPass);
}

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
  return std::make_shared<fiscalNullModule>();
}

cPortProp& portProp() {
  auto& shared = moduleState().portProp;
  if (shared == nullptr) shared = std::make_shared<cPortProp>();
  return *shared;
}

std::int16_t closePort() {
  ModuleState& state = moduleState();
  if (state.portHandle <= 0) return 0;
  bool closed = true;
  if (portProp().tcpPort) {
    portProp().TCPClass()->ShutdownConnection();
    portProp().setTCPClass(nullptr);
    portProp().tcpPort = false;
  } else {
    closed = state.platform->serial.close(state.portHandle);
  }
  state.portHandle = 0;
  return closed ? 1 : 0;
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
