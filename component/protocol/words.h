#pragma once

#include "protocol/reply.h"

namespace mirvane {

/// What a command is, as far as whoever sends it has to know. One that is none of these does something on the device
/// that must happen once.
struct Word {
  /// It only asks and changes nothing, so it may be asked again.
  bool asks = false;
  /// It asks what remains to pay; the amount is the answer's first field.
  bool asksRemaining = false;
  /// It hands over a piece of the journal, or what the journal begins with: an answer that is cut is a piece lost.
  bool movesJournal = false;
  /// It pays, or starts a card terminal: sent twice, it could charge a card twice.
  bool pays = false;
  /// It pays by a card terminal.
  bool paysByCard = false;
  /// It, or the reply to it, may hold the key of the tax authority's server.
  bool holdsKey = false;
};

/// What a device family's commands are, as its driver knows them and the rooms below have to.
struct Words {
  /// Nothing for a command that the family does not have: a program may send any.
  std::optional<Word> (*find)(TextView command);
  Word of(TextView command) const { return find(command).value_or(Word()); }
  /// Asks whether the device is free. It moves nothing on but the end of a card payment.
  TextView askState;
  /// Asks for the serial number, which is the answer's first field.
  TextView askSerialNumber;
};

}  // namespace mirvane
