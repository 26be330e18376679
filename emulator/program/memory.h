#pragma once

#include <string>

#include "emulator/device.h"
#include "emulator/line.h"
#include "emulator/program/clock.h"
#include "emulator/program/store.h"

namespace mirvane::emulator {

struct NamedLine {
  std::string name;
  Line* line;
};

/// The objects whose state is kept.
struct Remembered {
  Device& device;
  StationClock& clock;
  const std::vector<NamedLine>& lines;
};

/// Restores the register from `store`; does nothing if it is empty. Throws StateError with the name of an impossible
/// value; the register is then unchanged.
void recall(Remembered remembered, Store& store);

/// Keeps in a store everything that the register remembers after a power cut: each number and text under its own name,
/// so that only changes are written.
class Keeper {
 public:
  /// `known` is the store's present content.
  Keeper(Store& store, Store::Values known) : store_(store), known_(std::move(known)) {}

  /// Throws StateError if writing fails.
  void keep(Remembered remembered);
  /// As `keep`, if only the lines' memory has changed.
  void keepLines(const std::vector<NamedLine>& lines);

 private:
  void write(Store::Values& changed, const std::vector<std::string>& gone);

  Store& store_;
  Store::Values known_;
};

}  // namespace mirvane::emulator
