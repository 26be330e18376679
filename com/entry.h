#pragma once

#include "platform/windows/floating_point.h"

namespace mirvane::com {

/// One entry into the component, from its first line to its last: everything that a program can set off goes through
/// this.
///
/// All objects share one device, so there is one call at a time, from whichever apartment. The others wait as COM
/// waits: their windows go on, and calls to objects of theirs are served. The thread that is inside may come in again
/// from its message loop.
class Entry {
 public:
  Entry() = default;
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;
  ~Entry() = default;

 private:
  class Turn {
   public:
    Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn();
  };

  // In this order: whatever the program does while it waits, it does in its own environment.
  Turn turn_;
  platform::OwnFloatingPoint floatingPoint_;
};

}  // namespace mirvane::com
