#include "state/module_state.h"

#include "text/code_page.h"

namespace mirvane {

ModuleState& moduleState() {
  // Never destroyed: at the end of the process its objects would be released in an arbitrary order.
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

void startRecord() {
  ModuleState& state = moduleState();
  if (state.recordFolder.empty() || (state.recorder != nullptr && state.recorder->isAlive())) return;
  state.recorder = nullptr;
  try {
    if (!state.platform->files.isFolder(state.recordFolder)) return;
    state.recorder =
        std::make_unique<recorder::Recorder>(state.platform->files, state.platform->clock, state.recordFolder);
  } catch (const std::exception&) {  // no thread available: no record
  }
}

void record(recorder::EventKind kind, std::int32_t number, TextView text) {
  if (moduleState().recorder != nullptr) moduleState().recorder->add(kind, number, toUtf8(text));
}

void recordBytes(recorder::EventKind kind, std::string_view bytes) {
  if (moduleState().recorder != nullptr && !bytes.empty())
    moduleState().recorder->add(kind, 0, std::string(bytes), moduleState().call.holdsKey);
}

void recordPort(recorder::EventKind kind, TextView port, const platform::SystemError& error) {
  record(kind, error.number, error.number == 0 ? Text(port) : Text(port) + u": " + error.text);
}

void showBox(TextView prompt, std::uint32_t style, TextView title) {
  record(recorder::EventKind::kBox, static_cast<std::int32_t>(style), Text(title) + u": " + Text(prompt));
  moduleState().platform->screen.messageBox(prompt, style, title);
}

}  // namespace mirvane
