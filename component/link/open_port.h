#pragma once

#include <string>

#include "state/module_state.h"

namespace mirvane {

/// The component's one port, and what is known of its line since it was opened.
struct OpenPort {
  /// The open serial port or socket; 0 or less when none is open.
  std::int32_t handle = 0;
  /// The name under which a serial port was opened.
  Text name;

  /// The last frame if its exchange ended with a reply; otherwise empty.
  std::string lastFrame{};
  /// Serial: the ACK of the last complete reply could not be written.
  bool owesAck = false;
  /// Serial: the line was lost and reopened, and it is not yet known whether the same register is on it.
  bool isReopened = false;

  bool isOpen() const { return handle > 0; }
};

inline OpenPort& thePort() { return kept<OpenPort>(); }

}  // namespace mirvane
