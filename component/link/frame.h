#pragma once

#include <string>

#include "text/text.h"

namespace mirvane {

/// The frame of a command, and whether it represents the command's text. Characters that the register has no code for
/// become "?", and so do the link's control bytes, which would end the frame in its middle.
struct Frame {
  explicit Frame(TextView command);

  std::string bytes;
  bool isFaithful = true;
};

/// The reply within what was received, from its STX on. It begins at the last STX followed by a result and status
/// bytes: anything before is the rest of an interrupted attempt, or noise. Without such an STX, everything received.
TextView replyIn(TextView received);

/// Whether a reply begins as a frame and lacks its end; the network accepts these.
bool isCut(TextView reply);

/// Whether one datagram is a complete frame with result and status bytes.
bool isWholeReply(const std::string& datagram);

/// The reply without the link's control bytes.
Text withoutControls(TextView reply);

}  // namespace mirvane
