#pragma once

#include "protocol/reply.h"

namespace mirvane {

/// What the sender has to know about a command. A command with none of these flags does something that must happen only
/// once.
struct Word {
  /// Only asks and changes nothing, so it may be repeated.
  bool asks = false;
  /// Asks for the remaining amount, the answer's first field.
  bool asksRemaining = false;
  /// Fetches a piece of the journal, or its beginning: if the answer is cut off, a piece is lost.
  bool movesJournal = false;
  /// Pays, or starts a card terminal: sent twice, it could charge a card twice.
  bool pays = false;
  /// Pays by card terminal.
  bool paysByCard = false;
  /// The command, or its reply, may hold the key of the tax authority's server.
  bool holdsKey = false;
};

/// The commands of a register family, as its driver knows them and the layers below need them.
struct Words {
  /// Nothing for a command that the family does not have: programs may send any.
  std::optional<Word> (*find)(TextView command);
  Word of(TextView command) const { return find(command).value_or(Word()); }
  /// Asks whether the register is ready. Changes nothing but the end of a card payment, which it reports once.
  TextView askState;
  /// Asks for the serial number, the answer's first field.
  TextView askSerialNumber;
};

}  // namespace mirvane
