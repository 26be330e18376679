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
  /// Makes a driver; null for a family whose driver is not present, which probing passes over.
  ObjectPtr (*create)();
};

/// What the whole component shares: one copy for every facade object and every driver. Nothing is locked here: whoever
/// lets programs in lets in one call at a time.
struct ModuleState {
  /// The selected driver, or null when none is selected.
  ObjectPtr currentDriver;
  FISCAL_TYPES fiscalType = FISCAL_unknown;
  Call call;
  /// See kept().
  Kept kept;
  bool traceActive = false;

  /// Where the flight record goes when the folder is there; the host names it, "" for none.
  Text recordFolder;
  /// Null while nothing is recorded.
  std::unique_ptr<recorder::Recorder> recorder;

  platform::Platform* platform = &platform::hostPlatform();
  /// The driver classes in probe order.
  std::vector<DriverCandidate> candidates;
  /// Makes the driver that is current while no device is.
  ObjectPtr (*createNullDriver)() = nullptr;
  /// How many facade objects there are; the trace ends with the last.
  int facades = 0;
  /// Makes an object of another component by its programmatic identifier, Nothing when there is none; null where no
  /// other components can be.
  ObjectPtr (*createObject)(TextView programmaticId) = nullptr;
};

ModuleState& moduleState();

/// What a room keeps for the whole component, in a type of its own; new when the component is.
template <class T>
T& kept() {
  return moduleState().kept.of<T>();
}

/// The current driver; when there is none, the one that probing `port` finds becomes it.
ObjectPtr driverOn(TextView port);

/// The current driver; when there is none, the null driver, which refuses, becomes it.
ObjectPtr driverOrRefusal();

/// Forgets the current driver; the fiscal type stays.
void releaseDriver();

/// Tries the candidates on `port`, with message boxes suppressed, and returns the first that connects, which stays
/// connected; the null driver when the port is empty or nothing answers. Records the fiscal type.
ObjectPtr probeDriver(TextView port);

/// Switches the debug trace and its window on or off.
void setTrace(bool active);

/// One line of the debug trace, behind the time as "mm:ss"; nothing while the trace is off.
void trace(TextView label, TextView text = {});

/// Begins the flight record where its folder is there and none is being written. Whoever makes the folder need not
/// restart a program: connecting looks for it.
void startRecord();

/// Tells the flight record, if there is one; `number` and `text` are what recorder::EventKind says. Nothing that goes
/// wrong with it is anybody's business here.
void record(recorder::EventKind kind, std::int32_t number, TextView text = {});
/// The same for bytes of the line.
void recordBytes(recorder::EventKind kind, std::string_view bytes);
/// The same for something that the system did or refused to do to a port.
void recordPort(recorder::EventKind kind, TextView port, const platform::SystemError& error = {});

/// Shows a message box and waits until it is closed.
void showBox(TextView prompt, std::uint32_t style, TextView title);

/// Title of the message boxes that speak of the device.
inline constexpr TextView kDeviceFamilyName = u"Varlen Fiscal";

}  // namespace mirvane
