#pragma once

#include <string>

#include "emulator/program/station.h"
#include "emulator/program/store.h"

namespace mirvane::emulator {

/// Takes over what `store` remembers of the register; nothing when it is empty. Throws StateError with the name of the
/// value that no register can have; the register is then as it was.
void recall(Station& station, Store& store);

/// Keeps in a store all that the register remembers when its power goes: each number and text under a name of its own,
/// so that only what has changed is written.
class Keeper {
 public:
  /// `known` is what the store holds.
  Keeper(Store& store, Store::Values known) : store_(store), known_(std::move(known)) {}

  /// Throws StateError when that cannot be written.
  void keep(Station& station);
  /// As `keep`, when nothing but what the lines remember has changed.
  void keepLines(Station& station);

 private:
  void write(Store::Values& changed, const std::vector<std::string>& gone);

  Store& store_;
  Store::Values known_;
};

}  // namespace mirvane::emulator
