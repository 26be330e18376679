#pragma once

#include "recorder/record_line.h"

namespace mirvane::recorder {

bool isHexDigit(char c);

/// Masks what looks like a key: 32 or more hexadecimal digits in a row, each of which becomes "*". A text may come in
/// pieces. At the edge of a piece, where a key may be cut, 8 digits are enough.
class KeyMask {
 public:
  std::string masked(std::string_view piece);

 private:
  /// How many digits the text so far ends with.
  std::size_t last_ = 0;
};

/// Masks secrets in the communication: the key of the tax authority's server, which one command sets and another one's
/// reply reports.
///
/// It is recognised by the command: the sender says that it `holdsKey`, and every field in which the key could appear
/// becomes "***". It is also recognised by its form, wherever and whenever it appears.
class Secrets {
 public:
  /// An event's text without secrets. Bytes of one direction may come in pieces, except the till's frames.
  std::string masked(EventKind kind, std::string_view text, bool holdsKey = false);
  /// Bytes that the till sends, one complete frame at a time, masked only by the command.
  std::string maskedSent(std::string_view bytes, bool holdsKey);

 private:
  std::string maskedReceived(std::string_view bytes) const;

  // A late reply may come after the next command.
  bool wasServer_ = false;
  bool isServer_ = false;
  KeyMask sent_;
  KeyMask received_;
};

}  // namespace mirvane::recorder
