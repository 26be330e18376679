#pragma once

#include <string>

#include "text/text.h"

namespace mirvane {

/// The frame of a command, and whether it stands for the command's own text: a character that the device has no code
/// for is "?" there, and so is a control byte of the link, which would end the frame in its middle.
struct Frame {
  explicit Frame(TextView command);

  std::string bytes;
  bool isFaithful = true;
};

/// The reply in what came in, from its STX on. It begins at the last STX with a result and status bytes behind it: what
/// stands before is the rest of an attempt that was cut off, or noise. With no such STX it is all that came.
TextView replyIn(TextView received);

/// Whether a reply begins as a frame does and lacks its end, which a network lets through.
bool isCut(TextView reply);

/// Whether one datagram is a frame with result and status bytes.
bool isWholeReply(const std::string& datagram);

/// A reply without the control bytes of the link.
Text withoutControls(TextView reply);

}  // namespace mirvane
