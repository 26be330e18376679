#pragma once

#include <string_view>
#include <vector>

#include "text/text.h"

// Commands and replies in words, for the page and the HTTP interface.
namespace mirvane::emulator {

struct DecodedField {
  /// Empty for a field without a meaning.
  std::string_view name;
  Text value;
};

struct DecodedCommand {
  /// Empty for an unknown command.
  std::string_view name;
  std::vector<DecodedField> fields;
};

/// `command` is without frame and checksum.
DecodedCommand decodeCommand(std::string_view command);

struct DecodedReply {
  /// False if the status bytes are missing; the rest is then meaningless.
  bool isWhole = false;
  int code = 0;
  int printerStatus = 0;
  int fiscalStatus = 0;
  std::vector<DecodedField> fields;
};

/// `reply` to `command`, both without frame and checksum.
DecodedReply decodeReply(std::string_view reply, std::string_view command);

}  // namespace mirvane::emulator
