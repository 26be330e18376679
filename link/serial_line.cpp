#include "link/serial_line.h"

#include <limits>

#include "link/line_memory.h"
#include "state/module_state.h"
#include "text/text.h"

namespace mirvane {
namespace {

using recorder::EventKind;

constexpr char kLineSettings[] = "115200,n,8,1";
constexpr platform::LineTimeouts kLineTimeouts{20, 1, 1, 1, 10};

// Holds the place of a port that was lost and could not be opened again: no handle of any system. Whatever is asked of
// it fails as on a broken line.
constexpr std::int32_t kLostPort = std::numeric_limits<std::int32_t>::max();

platform::SerialPort& serial() { return moduleState().platform->serial; }

// Names past COM9 are no devices of their own on Windows: they need the prefix.
bool isComNumber(TextView name) {
  const TextView prefix = name.substr(0, 3);
  return (prefix == u"COM" || prefix == u"com") && name.size() > 3 && name.size() <= 8 &&
         name.find_first_not_of(u"0123456789", 3) == TextView::npos;
}

}  // namespace

bool openSerialLine(const Text& name) {
  ModuleState& state = moduleState();
  state.portName = name;
  state.portHandle = serial().open(name);
  if (state.portHandle <= 0 && isComNumber(name)) state.portHandle = serial().open(u"\\\\.\\" + name);
  const bool opened = state.portHandle > 0;
  recordPort(EventKind::kOpen, name, opened ? platform::SystemError{} : platform::lastSystemError());
  return opened;
}

bool configureSerialLine() {
  const ModuleState& state = moduleState();
  serial().setTimeouts(state.portHandle, kLineTimeouts);
  if (serial().configure(state.portHandle, kLineSettings)) return true;
  recordPort(EventKind::kOpen, state.portName, platform::lastSystemError());
  return false;
}

bool closeSerialLine() {
  const ModuleState& state = moduleState();
  if (state.portHandle == kLostPort) return true;
  const bool closed = serial().close(state.portHandle);
  record(EventKind::kClose, closed ? 0 : 1, state.portName);
  return closed;
}

void breakSerialLine() {
  recordPort(EventKind::kBroken, moduleState().portName, platform::lastSystemError());
  closeSerialLine();
  moduleState().portHandle = kLostPort;
}

bool reopenSerialLine() {
  const Text name = moduleState().portName;
  const bool opened = openSerialLine(name);
  if (opened && configureSerialLine()) {
    lineMemory().isReopened = true;
    return true;
  }
  if (opened) closeSerialLine();
  moduleState().portHandle = kLostPort;
  return false;
}

}  // namespace mirvane
