#pragma once

#include <memory>
#include <vector>

#include "automation/object.h"
#include "platform/ports.h"
#include "recorder/recorder.h"
#include "state/call.h"
#include "state/fiscal_types.h"
#include "state/kept.h"

namespace mirvane {

/// A driver class that probing tries.
struct DriverCandidate {
  FISCAL_TYPES type;
  std::string_view className;
  /// Creates a driver; null for a family without a driver, which probing skips.
  ObjectPtr (*create)();
};

/// What the whole component shares: one copy for all facade objects and drivers. Nothing is locked here; the entry lets
/// one call in at a time.
struct ModuleState {
  /// The selected driver; null if none is.
  ObjectPtr currentDriver;
  FISCAL_TYPES fiscalType = FISCAL_unknown;
  Call call;
  /// See kept().
  Kept kept;
  bool traceActive = false;

  /// Where the flight record goes if the folder exists; set by the host, "" for none.
  Text recordFolder;
  /// Null while nothing is recorded.
  std::unique_ptr<recorder::Recorder> recorder;

  platform::Platform* platform = &platform::hostPlatform();
  /// The driver classes in probe order.
  std::vector<DriverCandidate> candidates;
  /// Creates the driver that is current while no register is connected.
  ObjectPtr (*createNullDriver)() = nullptr;
  /// Number of facade objects; the trace ends with the last one.
  int facades = 0;
  /// Creates an object of another component by its programmatic identifier; Nothing if it does not exist. Null if there
  /// can be no other components.
  ObjectPtr (*createObject)(TextView programmaticId) = nullptr;
};

ModuleState& moduleState();

/// The component-wide state of a layer, in a type of its own; new with each component.
template <class T>
T& kept() {
  return moduleState().kept.of<T>();
}

/// The current driver; if there is none, the one that probing `port` finds becomes current.
ObjectPtr driverOn(TextView port);

/// The current driver; if there is none, the null driver, which refuses, becomes current.
ObjectPtr driverOrRefusal();

/// Forgets the current driver; the fiscal type stays.
void releaseDriver();

/// Tries the candidates on `port`, with message boxes suppressed, and returns the first that connects; it stays
/// connected. Returns the null driver if the port is empty or nothing answers. Records the fiscal type.
ObjectPtr probeDriver(TextView port);

/// Switches the debug trace and its window on or off.
void setTrace(bool active);

/// Writes one line to the debug trace, after the time as "mm:ss"; does nothing while the trace is off.
void trace(TextView label, TextView text = {});

/// Starts the flight record if its folder exists and no record is being written. Connecting calls this, so a program
/// need not be restarted after the folder is created.
void startRecord();

/// Adds an event to the flight record, if there is one; for `number` and `text` see recorder::EventKind. A failure of
/// the record does not matter to the caller.
void record(recorder::EventKind kind, std::int32_t number, TextView text = {});
/// The same for bytes of the line.
void recordBytes(recorder::EventKind kind, std::string_view bytes);
/// The same for a port that the system opened or closed, or refused to.
void recordPort(recorder::EventKind kind, TextView port, const platform::SystemError& error = {});

/// Shows a message box and waits until it is closed.
void showBox(TextView prompt, std::uint32_t style, TextView title);

/// Title of message boxes about the register.
inline constexpr TextView kDeviceFamilyName = u"Varlen Fiscal";

}  // namespace mirvane
