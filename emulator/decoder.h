#pragma once

#include <string_view>
#include <vector>

#include "text/text.h"

// Commands and replies in words, for whoever reads along.
namespace mirvane::emulator {

struct DecodedField {
  /// Empty for one that says nothing.
  std::string_view name;
  Text value;
};

struct DecodedCommand {
  /// Empty for a command that the register does not know.
  std::string_view name;
  std::vector<DecodedField> fields;
};

/// `command` is bare.
DecodedCommand decodeCommand(std::string_view command);

struct DecodedReply {
  /// False for one that lacks its status bytes; the rest means nothing then.
  bool isWhole = false;
  int code = 0;
  int printerStatus = 0;
  int fiscalStatus = 0;
  std::vector<DecodedField> fields;
};

/// `reply`, bare, to `command`.
DecodedReply decodeReply(std::string_view reply, std::string_view command);

}  // namespace mirvane::emulator
