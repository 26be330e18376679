#pragma once

#include <optional>

#include "link/transport.h"
#include "protocol/reply.h"

namespace mirvane {

/// What came of a command.
struct Answer {
  Reply reply;
  /// How often the command went out, in all its askings and their attempts.
  int attempts = 0;
};

/// Frames one command, sends it over the open port and takes its reply. A command that only asks is sent again when the
/// reply tells nothing, three times in all; the first two times such a reply is not acknowledged, so that the device
/// tells again what it may tell only once. Without an open port nothing is sent.
Answer exchange(TextView command, const Sending& sending, SilenceObserver& silence);

/// Asks once, for so many seconds at most; nothing when no reply with its status bytes came.
std::optional<Reply> askBriefly(TextView question, double seconds);

/// Whether the device could take this command for a repetition of the one before: on a network it knows one by its
/// frame, until an acknowledgement has arrived there, which nobody can see.
bool looksRepeated(TextView command);

/// What a silent serial device comes to, until it answers.
Reply silentDevice();

}  // namespace mirvane
