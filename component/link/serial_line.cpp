#include "link/serial_line.h"

#include <limits>

#include "link/open_port.h"
#include "state/module_state.h"
#include "text/text.h"

namespace mirvane {
namespace {

using recorder::EventKind;

constexpr char kLineSettings[] = "115200,n,8,1";
constexpr platform::LineTimeouts kLineTimeouts{20, 1, 1, 1, 10};

// Stands in for a port that was lost and could not be reopened. No system uses this handle, so every operation on it
// fails as on a broken line.
constexpr std::int32_t kLostPort = std::numeric_limits<std::int32_t>::max();

platform::SerialPort& serial() { return moduleState().platform->serial; }

// On Windows, names above COM9 are not devices by themselves: they need the prefix.
bool isComNumber(TextView name) {
  const TextView prefix = name.substr(0, 3);
  return (prefix == u"COM" || prefix == u"com") && name.size() > 3 && name.size() <= 8 &&
         name.find_first_not_of(u"0123456789", 3) == TextView::npos;
}

}  // namespace

bool openSerialLine(const Text& name) {
  OpenPort& port = thePort();
  port.name = name;
  auto opened = serial().open(name);
  if (!opened && isComNumber(name)) opened = serial().open(u"\\\\.\\" + name);
  port.handle = opened.value_or(-1);
  recordPort(EventKind::kOpen, name, opened.reason);
  return port.isOpen();
}

bool configureSerialLine() {
  const OpenPort& port = thePort();
  serial().setTimeouts(port.handle, kLineTimeouts);
  const auto configured = serial().configure(port.handle, kLineSettings);
  if (!configured) recordPort(EventKind::kOpen, port.name, configured.reason);
  return static_cast<bool>(configured);
}

bool closeSerialLine() {
  const OpenPort& port = thePort();
  if (port.handle == kLostPort) return true;
  const bool closed = serial().close(port.handle);
  record(EventKind::kClose, closed ? 0 : 1, port.name);
  return closed;
}

void breakSerialLine(const platform::SystemError& reason) {
  recordPort(EventKind::kBroken, thePort().name, reason);
  closeSerialLine();
  thePort().handle = kLostPort;
}

bool reopenSerialLine() {
  const Text name = thePort().name;
  const bool opened = openSerialLine(name);
  if (opened && configureSerialLine()) {
    thePort().isReopened = true;
    return true;
  }
  if (opened) closeSerialLine();
  thePort().handle = kLostPort;
  return false;
}

}  // namespace mirvane
