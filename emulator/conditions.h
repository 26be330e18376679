#pragma once

namespace mirvane::emulator {

/// What is wrong with the machine beside its printer, and which rules it keeps that not every register has.
struct Conditions {
  /// Its clock has lost the time.
  bool clockLost = false;
  bool batteryFault = false;
  /// No further day fits into its fiscal memory.
  bool memoryFull = false;
  bool cutterError = false;
  /// Twenty-four hours after a day's first document it wants the Z report.
  bool dailyZ = false;
  /// No more cash goes out than is in the drawer.
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
