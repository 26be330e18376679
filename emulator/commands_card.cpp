#include <algorithm>

#include "emulator/command.h"

namespace mirvane::emulator {
namespace {

constexpr std::int64_t kGreatestNumber = 32'767;
constexpr std::int64_t kGreatestPort = 65'535;

bool isWithin(std::int64_t number, std::int64_t least, std::int64_t most) { return number >= least && number <= most; }

/// Four numbers up to 255 with points between, none with a needless zero in front.
Code ipProblem(std::string_view ip) {
  std::array<std::int64_t, 4> octets{};
  for (std::size_t i = 0; i < octets.size(); ++i) {
    const std::string_view octet = ip.substr(0, i < 3 ? ip.find('.') : ip.size());
    const auto number = octet.size() <= 3 ? parseFixed(octet, 0) : std::nullopt;
    if (!number || !isWithin(*number, 0, 255) || octet != std::to_string(*number)) return Code::kInvalidIp;
    octets[i] = *number;
    ip.remove_prefix(std::min(octet.size() + 1, ip.size()));
  }
  // This network, groups, broadcast: no terminal can have such an address.
  return isWithin(octets[0], 1, 223) ? Code::kOk : Code::kReservedIp;
}

/// The terminal whose number stands in the second field; none, with the reason in `code`, when it is not programmed.
const CardTerminal* findTerminal(const Register& machine, const Fields& fields, Code& code) {
  const auto& terminals = machine.fiscal.cardTerminals;
  const auto found = terminals.find(fields.whole(1));
  code = isWithin(fields.number(1), 1, kMostTerminals) ? Code::kTerminalInactive : Code::kFieldRange;
  return found == terminals.end() ? nullptr : &found->second;
}

Code tellTerminal(Register& machine, const Fields& fields, ReplyWriter& reply) {
  Code code = Code::kOk;
  const CardTerminal* terminal = findTerminal(machine, fields, code);
  if (!terminal) return code;
  reply.whole(terminal->isEnabled).text(terminal->ip).whole(terminal->port).text(terminal->description);
  reply.whole(terminal->variant).whole(terminal->timeout);
  for (const int bitmap : terminal->bitmaps) reply.whole(bitmap);
  reply.text(terminalIdentifier(fields.whole(1))).whole(terminal->middleware).text(terminal->acquirer);
  reply.text(terminal->middlewareTerminal).text(terminal->transaction).whole(terminal->registerIdFormat);
  return Code::kOk;
}

Code setTerminal(Register& machine, const Fields& fields, ReplyWriter&) {
  Code code = machine.fiscal.documentProblem();
  if (code != Code::kOk) return code;
  if (!isWithin(fields.number(1), 1, kMostTerminals) || !isWithin(fields.number(2), 0, 255) ||
      !isWithin(fields.number(3), 1, kGreatestPort)) {
    return Code::kFieldRange;
  }
  for (const std::size_t i : {4U, 7U, 8U, 9U, 10U, 11U, 15U}) {
    if (!isWithin(fields.number(i), 0, kGreatestNumber)) return Code::kFieldRange;
  }
  code = ipProblem(fields.bytes(5));
  if (code != Code::kOk) return code;
  const int flags = fields.whole(2);
  machine.fiscal.cardTerminals[fields.whole(1)] = {
      flags % 2 == 1,
      flags - flags % 2,
      std::string(fields.bytes(5)),
      fields.whole(3),
      fields.text(6),
      fields.whole(7),
      fields.whole(4),
      {fields.whole(8), fields.whole(9), fields.whole(10), fields.whole(11)},
      std::string(fields.bytes(12)),
      std::string(fields.bytes(13)),
      std::string(fields.bytes(14)),
      fields.whole(15)};
  return Code::kOk;
}

/// Its number alone tells which; the other fields only have to be of their kind.
Code deleteTerminal(Register& machine, const Fields& fields, ReplyWriter&) {
  Code code = machine.fiscal.documentProblem();
  if (code != Code::kOk || !findTerminal(machine, fields, code)) return code;
  machine.fiscal.cardTerminals.erase(fields.whole(1));
  return Code::kOk;
}

/// Each programmed terminal is there, at its address; nobody answers at any other.
Code testTerminal(Register& machine, const Fields& fields, ReplyWriter&) {
  Code code = ipProblem(fields.bytes(5));
  if (code != Code::kOk) return code;
  const CardTerminal* terminal = findTerminal(machine, fields, code);
  if (!terminal) return code;
  if (fields.number(2) == 0 || !terminal->isEnabled) return Code::kTerminalInactive;
  return fields.number(3) == terminal->port && fields.bytes(5) == terminal->ip ? Code::kOk : Code::kEthernet;
}

}  // namespace

const std::vector<CommandRow>& cardCommands() {
  using namespace field;
  constexpr FieldRule kTerminal = whole("terminal", 2);
  constexpr FieldRule kEnabled = whole("enabled", 3);
  constexpr FieldRule kPort = whole("port", 5);
  constexpr FieldRule kTimeout = whole("time-out", 5);
  // Long enough for texts that are not addresses, so that they are refused as such.
  constexpr FieldRule kIp = text("IP", 40);
  constexpr FieldRule kDescription = text("description", 10);
  constexpr FieldRule kBitmap = whole("bitmap", 5);
  static const std::vector<FieldRule> kRecord = {selector(),
                                                 kTerminal,
                                                 kEnabled,
                                                 kPort,
                                                 kTimeout,
                                                 kIp,
                                                 kDescription,
                                                 whole("variant", 5),
                                                 kBitmap,
                                                 kBitmap,
                                                 kBitmap,
                                                 kBitmap,
                                                 text("acquirer", 30),
                                                 text("middleware terminal", 30),
                                                 text("transaction", 30),
                                                 whole("format", 5)};
  static const std::vector<CommandRow> kCommands = {
      {"E",
       "0",
       "read card terminal",
       {selector(), kTerminal, empty(), empty(), empty(), empty(), empty(), empty(), empty()},
       false,
       tellTerminal,
       {"enabled", "IP", "port", "description", "variant", "time-out", "bitmap", "bitmap", "bitmap", "bitmap", "TID",
        "middleware", "acquirer", "middleware terminal", "transaction", "format"}},
      {"E", "1", "card terminal", kRecord, false, setTerminal},
      {"E",
       "2",
       "test card terminal",
       {selector(), kTerminal, kEnabled, kPort, kTimeout, kIp, kDescription, selector(), selector()},
       false,
       testTerminal},
      {"E", "4", "delete card terminal", kRecord, false, deleteTerminal},
  };
  return kCommands;
}

}  // namespace mirvane::emulator
