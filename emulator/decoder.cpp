#include "emulator/decoder.h"

#include <charconv>

#include "emulator/command.h"
#include "text/code_page.h"

namespace mirvane::emulator {
namespace {

const CommandRow* rowOf(std::string_view command) {
  if (command.find('/') == std::string_view::npos) return nullptr;
  Code code = Code::kOk;
  return findCommand(Fields(command), code);
}

/// The pieces of `bytes`, each closed by "/"; what stands behind the last one is a piece too.
std::vector<std::string_view> split(std::string_view bytes) {
  std::vector<std::string_view> pieces;
  while (!bytes.empty()) {
    pieces.push_back(bytes.substr(0, bytes.find('/')));
    bytes.remove_prefix(std::min(pieces.back().size() + 1, bytes.size()));
  }
  return pieces;
}

}  // namespace

DecodedCommand decodeCommand(std::string_view command) {
  const CommandRow* row = rowOf(command);
  DecodedCommand decoded{row ? row->name : "", {}};
  const std::vector<std::string_view> pieces = split(command);
  for (std::size_t i = 1; i < pieces.size(); ++i) {
    const bool isKnown = row && i <= row->fields.size();
    decoded.fields.push_back({isKnown ? row->fields[i - 1].name : "", fromCodePage(pieces[i])});
  }
  return decoded;
}

DecodedReply decodeReply(std::string_view reply, std::string_view command) {
  const CommandRow* row = rowOf(command);
  const std::vector<std::string_view> pieces = split(reply);
  DecodedReply decoded;
  std::size_t count = 0;
  for (int* status : {&decoded.code, &decoded.printerStatus, &decoded.fiscalStatus}) {
    if (count == pieces.size() || pieces[count].size() != 2) return decoded;
    const char* const end = pieces[count].data() + 2;
    if (std::from_chars(pieces[count++].data(), end, *status, 16).ptr != end) return decoded;
  }
  decoded.isWhole = true;
  for (std::size_t i = count; i < pieces.size(); ++i) {
    const bool isKnown = row && i - count < row->replyNames.size();
    decoded.fields.push_back({isKnown ? row->replyNames[i - count] : "", fromCodePage(pieces[i])});
  }
  return decoded;
}

}  // namespace mirvane::emulator
