#pragma once

#include <string>

namespace mirvane::check {

/// What the program ends with.
enum Outcome { kNoProblems = 0, kWarnings = 1, kFaults = 2, kFailed = 3 };

/// What is to be looked at, and how it is told. With nothing but texts left empty: this machine.
struct Examination {
  /// Of a component that is not registered; empty for the registered ones.
  std::string folder;
  /// The register to ask; empty for none.
  std::string port;
  bool slip = false;
  bool find = false;
  bool selfTest = false;
  /// The self-test's emulator; empty for the package's.
  std::string emulator;
  /// The file to write all of it into, and this machine's state with it; empty for none.
  std::string report;
  bool asJson = false;
};

/// Looks, tells what it found and what it did not look at, and writes the report.
Outcome examine(const Examination& wanted);

}  // namespace mirvane::check
