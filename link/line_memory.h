#pragma once

#include <string>

#include "state/module_state.h"

namespace mirvane {

/// What the port's line is known for since the port was opened; forgotten when it is opened by name again.
struct LineMemory {
  /// The last frame, where its exchange ended with a reply; empty otherwise.
  std::string lastFrame;
  /// Serial: the ACK of the last complete reply could not be written.
  bool owesAck = false;
  /// Serial: the line was lost and opened anew, and whether the same device sits there has not been told yet.
  bool isReopened = false;
};
inline LineMemory& lineMemory() { return kept<LineMemory>(); }

}  // namespace mirvane
