#pragma once

#include "recorder/record_line.h"

namespace mirvane::recorder {

bool isHexDigit(char c);

/// Blanks whatever looks like a key: 32 hexadecimal digits in a row, and more, each of which becomes a "*". A text may
/// come in pieces. At the edge of a piece, where a key may have been cut, 8 digits are enough.
class KeyMask {
 public:
  std::string masked(std::string_view piece);

 private:
  /// How many digits the text ends with so far.
  std::size_t last_ = 0;
};

/// Blanks secrets out of a conversation: the key of the tax authority's server, which one command sets and the reply to
/// another tells.
///
/// It is known by the command, of which whoever sends it says that it `holdsKey`: each field from where the key can be
/// on becomes "***", whatever stands between. And it is known by its look, wherever and whenever it comes.
class Secrets {
 public:
  /// An event's text with no secret in it. The bytes of one direction may come in pieces, but for frames of the till.
  std::string masked(EventKind kind, std::string_view text, bool holdsKey = false);
  /// Bytes of the till, a whole frame at a time, masked by the command alone.
  std::string maskedSent(std::string_view bytes, bool holdsKey);

 private:
  std::string maskedReceived(std::string_view bytes) const;

  // A late reply may come behind the next command.
  bool wasServer_ = false;
  bool isServer_ = false;
  KeyMask sent_;
  KeyMask received_;
};

}  // namespace mirvane::recorder
