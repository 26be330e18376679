#pragma once

#include <string>

namespace mirvane::check {

/// Exit codes of the program.
enum Outcome { kNoProblems = 0, kWarnings = 1, kFaults = 2, kFailed = 3 };

/// What to check, and how to report it. With all texts empty: this machine.
struct Examination {
  /// Folder of a component that is not registered; empty for the registered ones.
  std::string folder;
  /// The register to ask; empty for none.
  std::string port;
  bool slip = false;
  bool find = false;
  bool selfTest = false;
  /// The emulator for the self-test; empty for the one in the release.
  std::string emulator;
  /// The file for the report, which also describes this machine; empty for none.
  std::string report;
  bool asJson = false;
};

/// Runs the checks, prints what they found and what was not checked, and writes the report.
Outcome examine(const Examination& wanted);

}  // namespace mirvane::check
