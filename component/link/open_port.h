#pragma once

#include <string>

#include "state/module_state.h"

namespace mirvane {

/// The component's one port, and what its line is known for since it was opened.
struct OpenPort {
  /// The open serial port or socket; 0 or less when none is open.
  std::int32_t handle = 0;
  /// The name that a serial port was opened by.
  Text name;

  /// The last frame, where its exchange ended with a reply; empty otherwise.
  std::string lastFrame{};
  /// Serial: the ACK of the last complete reply could not be written.
  bool owesAck = false;
  /// Serial: the line was lost and opened anew, and whether the same device sits there has not been told yet.
  bool isReopened = false;

  bool isOpen() const { return handle > 0; }
};

inline OpenPort& thePort() { return kept<OpenPort>(); }

}  // namespace mirvane
