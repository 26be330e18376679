#pragma once

#include <string>

#include "emulator/program/station.h"
#include "emulator/program/web/views.h"
#include "http/message.h"

// The handlers behind the paths of the interface.
namespace mirvane::emulator {

using http::Answer;
using http::nothing;
using http::Refusal;

constexpr int kGreatestNumber = 1'000'000'000;

/// A request on its way to its handler.
struct Call {
  Station& station;
  http::Request& request;
  /// The text in place of the path's "*".
  std::string item;

  int query(const char* name, int otherwise, int least, int most) const;
  /// How many seconds the client waits for something that does not exist yet.
  double wait() const;
  /// The path's item as a number.
  int number() const;
};

// Reads: reads.cpp.
Answer getHealth(Call& call);
Answer getVersion(Call& call);
Answer getState(Call& call);
Answer getRegister(Call& call);
Answer getClock(Call& call);
Answer getCard(Call& call);
Answer getSwitches(Call& call);
Answer getFaults(Call& call);
Answer getFault(Call& call);
Answer getChanges(Call& call);
Answer getConversation(Call& call);
Answer getDocuments(Call& call);
Answer getDocument(Call& call);
Answer getReceipts(Call& call);
Answer getReceipt(Call& call);
Answer getHappenings(Call& call);
Answer postVerify(Call& call);

// Writes: writes.cpp.
Answer deleteConversation(Call& call);
Answer postFault(Call& call);
Answer deleteFaults(Call& call);
Answer deleteFault(Call& call);
Answer patchSwitches(Call& call);
Answer patchCard(Call& call);
Answer postDecision(Call& call);
Answer postCommand(Call& call);
Answer postPaper(Call& call);
Answer patchRegister(Call& call);
Answer patchClock(Call& call);
Answer postReset(Call& call);

}  // namespace mirvane::emulator
