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

/// Where it is that is remembered.
struct Remembered {
  Device& device;
  StationClock& clock;
  const std::vector<NamedLine>& lines;
};

/// Takes over what `store` remembers of the register; nothing when it is empty. Throws StateError with the name of the
/// value that no register can have; the register is then as it was.
void recall(Remembered remembered, Store& store);

/// Keeps in a store all that the register remembers when its power goes: each number and text under a name of its own,
/// so that only what has changed is written.
class Keeper {
 public:
  /// `known` is what the store holds.
  Keeper(Store& store, Store::Values known) : store_(store), known_(std::move(known)) {}

  /// Throws StateError when that cannot be written.
  void keep(Remembered remembered);
  /// As `keep`, when nothing but what the lines remember has changed.
  void keepLines(const std::vector<NamedLine>& lines);

 private:
  void write(Store::Values& changed, const std::vector<std::string>& gone);

  Store& store_;
  Store::Values known_;
};

}  // namespace mirvane::emulator
