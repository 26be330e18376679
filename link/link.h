#pragma once

#include "link/transport.h"
#include "protocol/reply.h"

namespace mirvane {

/// How a command is sent.
struct Sending {
  /// Seconds that the device may take before a serial exchange is repeated.
  std::int16_t timeOut = 0;
  /// Whether the box about characters that the device does not know stays away.
  bool silent = true;
};

/// Frames one command, sends it over the open port and takes its reply. A command that only asks is sent again when the
/// reply tells nothing, three times in all. Without an open port nothing is sent.
Reply exchange(TextView command, const Sending& sending, SilenceObserver& silence);

/// What a silent serial device comes to, until it answers.
Reply silentDevice();

}  // namespace mirvane
