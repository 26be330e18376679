#pragma once

namespace mirvane::emulator {

/// Faults of the machine apart from its printer, and rules that not every register has.
struct Conditions {
  /// The clock has lost the time.
  bool clockLost = false;
  bool batteryFault = false;
  /// The fiscal memory has no room for another day.
  bool memoryFull = false;
  bool cutterError = false;
  /// Twenty-four hours after a day's first document it requires the Z report.
  bool dailyZ = false;
  /// It pays out no more cash than is in the drawer.
  bool drawerLimit = false;
};

struct NamedCondition {
  const char* name;
  bool Conditions::*member;
};
constexpr NamedCondition kConditions[] = {
    {"clockLost", &Conditions::clockLost},   {"batteryFault", &Conditions::batteryFault},
    {"memoryFull", &Conditions::memoryFull}, {"cutterError", &Conditions::cutterError},
    {"dailyZ", &Conditions::dailyZ},         {"drawerLimit", &Conditions::drawerLimit},
};

}  // namespace mirvane::emulator
