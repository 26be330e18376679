#pragma once

#include <optional>

#include "link/transport.h"
#include "protocol/reply.h"

namespace mirvane {

/// The outcome of a command.
struct Answer {
  Reply reply;
  /// How often the command was sent, in all rounds and their attempts.
  int attempts = 0;
};

/// Frames one command, sends it over the open port and returns its reply. A question whose reply says nothing is sent
/// again, three times in all. The first two such replies are not acknowledged, so that the register repeats what it may
/// report only once. Without an open port nothing is sent.
Answer exchange(TextView command, const Sending& sending, SilenceObserver& silence);

/// Asks once and waits at most this many seconds; nothing if no reply with status bytes arrives.
std::optional<Reply> askBriefly(TextView question, double seconds);

/// Whether the register could take this command for a repetition of the previous one. On a network it recognises a
/// repetition by its frame until an ACK has arrived, and nobody can see whether it has.
bool looksRepeated(TextView command);

/// The Reply that stands for a silent serial register until it answers.
Reply silentDevice();

}  // namespace mirvane
